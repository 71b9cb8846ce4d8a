#define PILIB_LANES 4
#define PILIB_KERNELS kBlurRowBaseline
#include "BlurRowKernels.ipp"
