runtest_tapbus -wait idle -tck 100 -tck 1000 -end_state idle
runtest_tapbus -wait drpause -tck 10
runtest_tapbus -tck 5
runtest_tapbus -tck 1000
runtest_tapbus -tck 40000
runtest_tapbus -tck 10021
runtest_tapbus -tck 100 -tck 1000
runtest_tapbus -wait irpause -tck 0 -end_state reset
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 20000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
runtest_tapbus -tck 40000
