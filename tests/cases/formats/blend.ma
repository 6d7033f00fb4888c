//Maya ASCII 2022 scene
requires maya "2022";
createNode transform -n "ball";
createNode pairBlend -n "blend";
	setAttr ".w" 0.5;
createNode animCurveTL -n "a";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 11 10;
createNode animCurveTL -n "b";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 11 30;
connectAttr "a.o" "blend.itx1";
connectAttr "b.o" "blend.itx2";
connectAttr "blend.otx" "ball.tx";
// End of blend.ma
