//Maya ASCII 2022 scene
requires maya "2022";
createNode transform -n "box";
// End of still.ma
