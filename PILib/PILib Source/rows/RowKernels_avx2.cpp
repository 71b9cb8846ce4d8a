#define PILIB_LANES 8
#define PILIB_KERNELS kRowKernelsAvx2
#include "RowKernels.ipp"
