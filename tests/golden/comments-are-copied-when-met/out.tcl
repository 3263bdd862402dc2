#-! first
#-// second
#-! indented
scan_ir_tapbus  8
    TDI (01)
   #-! after a statement
#-// inside a statement
#-! again
scan_ir_tapbus  8
    TDI (02)

# FREQUENCY 1000000 Hz ; #-// no blank
#-//
#-!
