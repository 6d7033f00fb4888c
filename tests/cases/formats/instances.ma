//Maya ASCII 2022 scene
requires maya "2022";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "near";
createNode transform -n "far";
	setAttr ".t" -type "double3" 100 0 0 ;
createNode transform -n "horse" -p "near";
createNode transform -n "rider" -p "horse";
	setAttr ".t" -type "double3" 0 2 0 ;
createNode animCurveTL -n "horse_translateX";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 11 20;
parent -s -nc -r -add "|near|horse" "far" ;
connectAttr "horse_translateX.o" "|near|horse.tx";
// End of instances.ma
