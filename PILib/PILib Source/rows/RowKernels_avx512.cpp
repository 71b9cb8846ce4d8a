#define PILIB_LANES 16
#define PILIB_KERNELS kRowKernelsAvx512
#include "RowKernels.ipp"
