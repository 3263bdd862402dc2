run_state_tapbus Reset Idle
run_state_tapbus DRPAUSE
run_state_tapbus RESET IDLE DRSELECT DRCAPTURE DREXIT1 DRPAUSE
run_state_tapbus IRPAUSE irexit2 IRSHIFT IRSHIFT IREXIT1 IRUPDATE IDLE IDLE
run_state_tapbus RESET RESET
run_state_tapbus DRSHIFT DREXIT1 DRUPDATE DRSELECT IRSELECT IRCAPTURE IREXIT1 IRPAUSE
run_state_tapbus DRPAUSE DREXIT2 DRSHIFT DREXIT1 DRPAUSE
set_property ENDSTATE_IR {IRPAUSE} $current_tapbus set_property ENDSTATE_DR {IDLE} $current_tapbus
