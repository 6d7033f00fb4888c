//Maya ASCII 2020 scene
requires maya "2020";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "left";
createNode transform -n "ctrl" -p "left";
createNode transform -n "right";
	setAttr ".t" -type "double3" 0 10 0 ;
createNode transform -n "ctrl" -p "right";
createNode animCurveTL -n "curve1";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  0 0 4 8;
createNode script -n "sceneConfigurationScriptNode";
	setAttr ".b" -type "string" "playbackOptions -min 0 -max 4 -ast 0 -aet 4 ";
	setAttr ".st" 6;
connectAttr "curve1.o" "|left|ctrl.tx";
connectAttr "curve1.o" "|right|ctrl.tx";
// End of twins.ma
