// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Brings a one-bit stream to rest: finds last bits behind which the silence pattern, for ever,
// leaves no step in the band. Cut anywhere, a loop is cut with its charge unpaid: what it still had
// to balance stays, and the last frames decode to -25 to -70 dBFS. Not a modulator: it knows the
// end, and looks at nothing but the band.
//
// e(n) is what the stream is wrong by at bit n: bit minus sound before the end, the silence pattern
// behind it. The band-limited error is r(t) = sum of h(t - n) e(n), and the search makes the energy
// of r small, over all t: before the end as well as behind it.
//
// 1. As a function of the last kWindow bits r has about 30 dimensions, so it is held as its
//    coordinates z in an orthonormal basis Q of them: r = Q z, and bit n adds e(n) h_n.
// 2. The real numbers e(n) that would bring z to 0 follow from a Riccati recursion backwards from
//    the end, each as a linear function of the z before it: a noise shaper with a horizon.
//    Quantised to bits, along several paths at a time, it loses next to nothing but in the very
//    last bits, behind which nobody corrects.
// 3. There it meets whole numbers. All bits are odd, so the sums over n of bit(n) C(p, k), p the
//    number of bits behind n, are what they are modulo 2 for k = 0, 1, 2, .... If the sound asks
//    for sums between those, no search finds anything: 1 too many in the charge, k = 0, is an
//    impulse of -30 dBFS at DSD64, in the next sum, k = 1, one of -61, in the next of -93. So the
//    sound is bent before the search, as little and as slowly as makes its sums fit. Within the
//    window that takes at most -97 dBFS for k = 1 and 2, but -54 for the charge, which therefore
//    must fit before: charge() tells what is missing, early enough.

#ifndef CORVIN_STUDIO_ENCODE_REST_SEARCH_H_
#define CORVIN_STUDIO_ENCODE_REST_SEARCH_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvin::studio {

/// Tables for one DSD rate; immutable, so any number of threads may use them.
class RestSearch {
 public:
  /// Bits that are searched, and bits behind the end whose sound is looked at.
  static constexpr std::size_t kWindow = 1024;
  static constexpr std::size_t kBehind = 1024;

  /// What one search at a time needs.
  class Scratch {
   public:
    explicit Scratch(const RestSearch& search);

   private:
    friend class RestSearch;
    std::vector<double> rows;          // r
    std::vector<double> sound;         // [kWindow]
    std::vector<double> states[2];     // [dimensions][kPaths]
    std::vector<std::uint8_t> origin;  // [kWindow][kPaths]: 2 x path before + bit
  };

  /// `oversampling`: DSD rate / 44100 or 48000. Throws std::bad_alloc and nothing else.
  explicit RestSearch(int oversampling);

  /// Bits before a place that the error behind it still depends on.
  std::size_t history() const { return 2 * reach_; }

  /// The sum over all time of the band-limited error, if the stream were right from here on.
  /// @param errors  errors[history()]: of the bits before here
  double charge(const double* errors, Scratch& scratch) const;

  /// Looks for better last bits. A fixed amount of work, without allocation.
  /// @param errors  errors[history() + kWindow + kBehind]: of all bits up to the end, and the sound
  ///                behind it
  /// @param bits    bits[kWindow], +1 or -1: the last ones. Stay as they are unless the error has
  ///                less energy with others
  /// @param first   of the bits that may change, 0..kWindow
  /// @param length  of the stream: says where in its byte the silence goes on
  void run(const double* errors, std::int8_t* bits, std::size_t first, std::uint64_t length,
           Scratch& scratch) const;

 private:
  static constexpr std::size_t kPaths = 32;
  static constexpr std::size_t kMostDimensions = 40;
  static constexpr std::size_t kStep = 64;  // bits from a row of r to the next one
  static constexpr std::size_t kSums = 3;

  using Point = std::array<double, kMostDimensions>;
  struct Found {
    double energy = 0;
    std::size_t path = 0;
  };

  void make_basis();
  void make_gains(double effort, std::vector<double>& gains, std::vector<double>& costs) const;
  void make_bends();
  void add(std::size_t bit, double error, double* rows) const;
  void add_history(const double* errors, double* rows) const;
  void project(const double* rows, Point& z) const;
  void step(std::size_t bit, double error, Point& z) const;
  double gain(std::size_t bit, const Point& z) const;
  void prepay(Point z, double* sound) const;
  void bend(Point z, double* sound) const;
  Found search(const Point& start, const Point& rest, const double* sound, std::size_t first,
               Scratch& scratch) const;
  static std::size_t choose(const double* costs, std::size_t count, std::uint8_t* chosen);

  std::vector<double> low_pass_;  // h, symmetric, 2 x reach_ + 1
  std::size_t reach_ = 0;
  std::size_t rows_ = 0;  // of r, from reach_ before the window on
  std::size_t dimensions_ = 0;
  std::vector<double> basis_;    // Q, [dimensions][rows]
  std::vector<double> vectors_;  // h_n, [kWindow][dimensions]
  std::vector<double> gains_;    // [kWindow][dimensions]
  std::vector<double> soft_gains_;
  std::vector<double> costs_;  // [kWindow]: of an error of 1 that those behind it correct
  std::vector<double> bends_;  // [kSums][kWindow]
};

/// Bit n of the silence pattern, which lies on the stream's bytes: +1 or -1.
double silence_at(std::uint64_t n);

/// x less the even number next to it.
double beyond_even(double x);

/// From 1 at x = 0 to 0 at x = 1 with two continuous derivatives, so that what is faded with it
/// keeps to its place in the spectrum.
double fade(double x);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_ENCODE_REST_SEARCH_H_
