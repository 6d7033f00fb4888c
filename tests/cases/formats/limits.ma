//Maya ASCII 2022 scene
requires maya "2022";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "lift";
	setAttr ".mntl" -type "double3" -1 0 -1 ;
	setAttr ".mxtl" -type "double3" 1 15 1 ;
	setAttr ".mtye" yes;
	setAttr ".xtye" yes;
createNode animCurveTL -n "lift_translateY";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 11 20;
createNode animCurveTT -n "timewarp";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 1 11 6;
select -ne :time1;
	setAttr ".o" 1;
	setAttr -k on ".etw" yes;
connectAttr "lift_translateY.o" "lift.ty";
connectAttr "timewarp.o" ":time1.tw";
// End of limits.ma
