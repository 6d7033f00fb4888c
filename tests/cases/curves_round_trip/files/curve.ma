//Maya ASCII 2018 scene
//Codeset: UTF-8
requires maya "2018";
currentUnit -l cm -a degree -t film;
fileInfo "application" "vantorelix";
createNode transform -n "vlx_ball_curve";
createNode nurbsCurve -n "curveShape1" -p "vlx_ball_curve";
	setAttr -k off ".v";
	setAttr ".cc" -type "nurbsCurve" 
		3 4 0 no 3
		9 0 0 0 1 2 3 4 4 4
		7
		0 0 0
		2 0 0
		4 0 0
		6 0 0
		8 0 0
		10 0 0
		12 0 0
		;
createNode script -n "sceneConfigurationScriptNode";
	setAttr ".b" -type "string" "playbackOptions -min 0 -max 6 -ast 0 -aet 6 ";
	setAttr ".st" 6;
// End of scene
