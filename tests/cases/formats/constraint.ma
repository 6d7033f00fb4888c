//Maya ASCII 2022 scene
requires maya "2022";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "leader";
createNode transform -n "follower";
createNode pointConstraint -n "follower_pointConstraint1" -p "follower";
createNode animCurveTL -n "leader_translateX";
	setAttr ".tan" 2;
	setAttr -s 2 ".ktv[0:1]"  1 0 10 9;
connectAttr "leader_translateX.o" "leader.tx";
connectAttr "follower_pointConstraint1.ctx" "follower.tx";
// End of constraint.ma
