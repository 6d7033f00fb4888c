//Maya ASCII 2018 scene
requires maya "2018";
createNode joint -n "hip";
createNode character -n "hero";
createNode animClip -n "walkSource";
connectAttr "hero.av[1]" "hip.rz";
// End of character.ma
