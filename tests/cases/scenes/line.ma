//Maya ASCII 2020 scene
requires maya "2020";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "ball";
createNode transform -n "rest";
createNode animCurveTL -n "ball_translateX";
	setAttr ".tan" 2;
	setAttr ".wgt" no;
	setAttr -s 2 ".ktv[0:1]"  0 0 8 16;
createNode script -n "sceneConfigurationScriptNode";
	setAttr ".b" -type "string" "playbackOptions -min 0 -max 8 -ast 0 -aet 8 ";
	setAttr ".st" 6;
connectAttr "ball_translateX.o" "ball.tx";
// End of line.ma
