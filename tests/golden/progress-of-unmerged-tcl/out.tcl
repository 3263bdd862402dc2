scan_dr_tapbus  8 -tdi A5 -tdo 0F -mask 0F

