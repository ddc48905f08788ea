/** @file
 * All of qkr: the one header to include. */
#ifndef QKR_QKR_H
#define QKR_QKR_H

#include <qkr/convcorr.h>
#include <qkr/dft.h>
#include <qkr/distributions.h>
#include <qkr/library.h>
#include <qkr/service.h>
#include <qkr/service_level1.h>
#include <qkr/sigfft.h>
#include <qkr/sigfft_flags.h>
#include <qkr/streams.h>
#include <qkr/streams_abstract.h>
#include <qkr/streams_files.h>
#include <qkr/streams_generators.h>
#include <qkr/vecmath.h>

#endif
