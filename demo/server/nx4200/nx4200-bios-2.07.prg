NX-4200 BIOS 2.07 (sample, no real image)
