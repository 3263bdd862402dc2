# TRST ON ; runtest_tapbus -wait idle -tck 30
runtest_tapbus -tck 30
runtest_tapbus -tck 30
runtest_tapbus -tck 10 -end_state idle # TRST OFF ;
runtest_tapbus -tck 30
runtest_tapbus -tck 30
runtest_tapbus -tck 1
runtest_tapbus -tck 30
runtest_tapbus -tck 30
runtest_tapbus -tck 30
runtest_tapbus -tck 30
runtest_tapbus -tck 1
runtest_tapbus -wait drpause -tck 30
runtest_tapbus -tck 30
runtest_tapbus -tck 10 -tck 30
runtest_tapbus -tck 10 -end_state drpause
