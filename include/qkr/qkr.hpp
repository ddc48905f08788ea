/** @file
 * All of qkr for C++20, header only over the C interface, whose names are used beside it at will:
 *
 *     #include <qkr/qkr.hpp>
 *
 *     qkr::exp(x, y);                            // vector functions: qkr/cpp/vecmath.hpp, packing.hpp
 *     qkr::stream s{qkr::mt2203(7), seed};       // random streams: qkr/cpp/stream.hpp
 *     s.normal(out, mean, sd);                   // distributions: qkr/cpp/distributions.hpp
 *     qkr::fft<double> f{1000};                  // transforms of any length: qkr/cpp/fft.hpp
 *     f.forward(x, X);
 *     qkr::dft<std::complex<float>> d{{640, 480}};  // several dimensions, batches, threads: qkr/cpp/dft.hpp
 *     qkr::convolve(x, h, y);                    // convolution: qkr/cpp/convolution.hpp, qkr/cpp/task.hpp
 *     qkr::convert(bytes, numbers);              // arrays: qkr/cpp/arrays.hpp
 *
 * - Spans in, spans out, of any size that memory holds; complex numbers are std::complex. Nothing is
 *   allocated but by objects that hold streams, plans, descriptors and tasks, when they are made; these move
 *   and do not copy, and clone() copies where that is possible.
 * - Failures throw qkr::error, with a status and its text. Of every operation there is a noexcept form that
 *   returns the status: try_exp, try_normal, try_forward; try_reset beside constructors.
 * - Sizes and parameters are checked before anything is done. Results are those of the C functions, bit for
 *   bit. */
#ifndef QKR_QKR_HPP
#define QKR_QKR_HPP

#include <qkr/cpp/arrays.hpp>
#include <qkr/cpp/convolution.hpp>
#include <qkr/cpp/dft.hpp>
#include <qkr/cpp/fft.hpp>
#include <qkr/cpp/packing.hpp>
#include <qkr/cpp/stream.hpp>
#include <qkr/cpp/task.hpp>
#include <qkr/cpp/vecmath.hpp>

#endif
