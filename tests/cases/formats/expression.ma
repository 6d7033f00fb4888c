//Maya ASCII 2022 scene
requires maya "2022";
createNode transform -n "wheel";
createNode expression -n "spin";
createNode animCurveTL -n "wheel_translateX";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 10 9;
connectAttr "wheel_translateX.o" "wheel.tx";
connectAttr "spin.out[0]" "wheel.rz";
// End of expression.ma
