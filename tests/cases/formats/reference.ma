//Maya ASCII 2022 scene
file -rdi 1 -ns "rig" -rfn "rigRN" -typ "mayaAscii" "rig.ma";
file -r -ns "rig" -dr 1 -rfn "rigRN" -typ "mayaAscii" "rig.ma";
requires maya "2022";
createNode reference -n "rigRN";
createNode transform -n "ball";
createNode animCurveTL -n "ball_translateX";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 10 9;
createNode animCurveTL -n "hand_translateX";
	setAttr -s 2 ".ktv[0:1]"  1 0 10 9;
connectAttr "ball_translateX.o" "ball.tx";
connectAttr "hand_translateX.o" "rigRN.phl[1]";
// End of reference.ma
