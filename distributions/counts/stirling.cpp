// Logarithms of small factorials, and the constants of Stirling's series.
#include <qkr/api.h>

extern "C" {
extern const double _vxsdLogFactTab[16], _vxsdLogConstTab[5];

// ln 0! to ln 15!
const double _vxsdLogFactTab[16] = {0x0.0p+0,
                                    0x0.0p+0,
                                    0x1.62e42fefa39efp-1,
                                    0x1.cab0bfa2a2002p+0,
                                    0x1.96ca77c922cf9p+1,
                                    0x1.326643c4479c9p+2,
                                    0x1.a51273acf01cap+2,
                                    0x1.10ce1f32dcc30p+3,
                                    0x1.5358e82fcb70dp+3,
                                    0x1.99a8921a7f7cfp+3,
                                    0x1.e357590954d15p+3,
                                    0x1.180973f3a8d74p+4,
                                    0x1.3fcba16d50143p+4,
                                    0x1.68d5a9c3b32cep+4,
                                    0x1.930f3df162a42p+4,
                                    0x1.be636a63fd346p+4};

// ln sqrt(2 pi), the first two coefficients of the series, four times the first number, and 1/2
const double _vxsdLogConstTab[5] = {0.9189385332046728, 1.0 / 12, 1.0 / 360, 3.675754132818691, 0.5};
}
