// Tables made by tools/tables.
#pragma once

extern "C" __attribute__((visibility("hidden"))) const double _vxsdPoissonTab[366];  // poisson_bands.py
