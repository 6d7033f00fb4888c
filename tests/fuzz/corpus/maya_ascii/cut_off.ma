//Maya ASCII 2022 scene
requires maya "2022";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "ball";
createNode animCurveTL -n "ball_translateX";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 11 20;
connectAttr "ball_translateX.o" "ball.tx";
