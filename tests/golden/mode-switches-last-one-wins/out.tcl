scan_ir_tapbus  8
    TDI (01)

