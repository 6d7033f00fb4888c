//Maya ASCII 2022 scene
requires maya "2022";
createNode transform -n "switch";
createNode transform -n "lamp";
createNode animCurveTL -n "switch_translateX";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 10 9;
createNode animCurveUL -n "lamp_translateY";
	setAttr -s 2 ".ktv[0:1]"  0 0 9 4;
connectAttr "switch_translateX.o" "switch.tx";
connectAttr "switch.tx" "lamp_translateY.i";
connectAttr "lamp_translateY.o" "lamp.ty";
// End of driven_key.ma
