#define PILIB_LANES 16
#define PILIB_KERNELS kBlurRowAvx512
#include "BlurRowKernels.ipp"
