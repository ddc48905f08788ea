/** @file
 * All of qkr: the one header to include. */
#ifndef QKR_QKR_H
#define QKR_QKR_H

#include <qkr/distributions.h>
#include <qkr/service.h>
#include <qkr/sigfft.h>
#include <qkr/streams.h>
#include <qkr/streams_abstract.h>
#include <qkr/streams_files.h>
#include <qkr/streams_generators.h>
#include <qkr/vecmath.h>

#endif
