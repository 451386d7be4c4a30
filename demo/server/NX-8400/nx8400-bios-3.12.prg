NX-8400 BIOS 3.12 (sample, no real image)
