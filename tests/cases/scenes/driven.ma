//Maya ASCII 2020 scene
requires maya "2020";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "ball";
createNode animCurveTL -n "ball_translateX";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  0 0 8 16;
createNode expression -n "wobble";
	setAttr -k on ".nds";
	setAttr ".ixp" -type "string" ".O[0]=sin(time)";
connectAttr "ball_translateX.o" "ball.tx";
connectAttr "wobble.out[0]" "ball.ty";
// End of driven.ma
