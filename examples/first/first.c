/* The mean of a million lognormal numbers: near exp(1/2) = 1.65. */
#include <qkr/qkr.h>
#include <stdio.h>

static double x[1000000];

int main(void) {
  const uint32_t seed = 777;
  StreamState *stream = NULL;
  int32_t status = __vxsNewStreamEx(&stream, QKR_MT2203(7), 1, &seed); /* member 7 of a family */
  if (status == VXS_STATUS_OK)
    status = _vxsdRngGaussian(QKR_GAUSSIAN_PAIRS, stream, 1000000, x, 0.0, 1.0); /* mean 0, deviation 1 */
  __vxsDeleteStream(&stream);
  if (status != VXS_STATUS_OK) {
    puts(qkr_status_text(QKR_ROOM_STREAMS, status));
    return 1;
  }
  _vxmdExp_HA(1000000, x, x); /* in place */
  double sum = 0;
  for (int i = 0; i < 1000000; ++i) sum += x[i];
  printf("mean %.2f\n", sum / 1000000);
}
