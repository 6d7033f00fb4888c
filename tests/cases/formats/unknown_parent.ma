//Maya ASCII 2022 scene
requires maya "2022";
currentUnit -l centimeter -a degree -t film;
createNode lookAt -n "look";
	setAttr ".t" -type "double3" 0 0 50 ;
	setAttr ".ry" 90;
createNode transform -n "eye" -p "look";
createNode animCurveTL -n "eye_translateX";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 11 20;
connectAttr "eye_translateX.o" "eye.tx";
// End of unknown_parent.ma
