set_property ENDSTATE_IR {IRPAUSE} $current_tapbus set_property ENDSTATE_DR {DRPAUSE} $current_tapbus
set_property ENDSTATE_DR {IDLE} $current_tapbus set_property ENDSTATE_IR {IDLE} $current_tapbus   # TRST Z ;
# TRST ON ;    #-! c
