#define PILIB_LANES 4
#define PILIB_KERNELS kRowKernelsBaseline
#include "RowKernels.ipp"
