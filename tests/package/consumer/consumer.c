/* Exp of an array, and the status of a call that overflows. */
#include <math.h>
#include <qkr/qkr.h>
#include <stdio.h>

int main(void) {
  const double x[3] = {0.0, 1.0, 1000.0};
  double y[3];
  _vxmClearErrStatus();
  _vxmdExp_HA(3, x, y);
  const int status = _vxmGetErrStatus();
  printf("%.17g %.17g %.17g, status %d\n", y[0], y[1], y[2], status);
  return !(y[0] == 1.0 && fabs(y[1] - 2.718281828459045) < 1e-15 && isinf(y[2]) && status == 3);
}
