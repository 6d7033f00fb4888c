//Maya ASCII 2022 scene
requires maya "2022";
createNode transform -n "box";
createNode transform -n "leader";
createNode pointConstraint -n "box_pointConstraint1" -p "box";
connectAttr "box_pointConstraint1.ctx" "box.tx";
// End of constrained.ma
