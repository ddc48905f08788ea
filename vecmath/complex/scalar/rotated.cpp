// Circular functions of one element: the hyperbolic ones of i z. The rotations only change signs and order.
#include "vecmath/complex/scalar/internal.h"

using namespace qkr;

// -i w
static vxm64fc turned_back(vxm64fc w) { return {w.im, flip(w.re)}; }

extern "C" {

vxm64fc _vxmccos_scalar(double x, double y) { return _vxmccosh_scalar(flip(y), x); }
vxm64fc _vxmcsin_scalar(double x, double y) { return turned_back(_vxmcsinh_scalar(flip(y), x)); }
vxm64fc _vxmctan_scalar(double x, double y) { return turned_back(_vxmctanh_scalar(flip(y), x)); }
vxm64fc _vxmcasin_scalar(double x, double y) { return turned_back(_vxmcasinh_scalar(flip(y), x)); }
vxm64fc _vxmcatan_scalar(double x, double y) { return turned_back(_vxmcatanh_scalar(flip(y), x)); }

vxm64fc _vxmcacosh_scalar(double x, double y) {
  const vxm64fc w = _vxmcacos_scalar(x, y);
  return {__builtin_fabs(w.im), __builtin_copysign(w.re, y)};
}

}  // extern "C"
