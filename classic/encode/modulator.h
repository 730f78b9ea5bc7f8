// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The modulator stage: a thread per channel that turns up-sampled floats into one bit each by
// seventh-order error feedback and packs eight to a byte, straight into the writer's blocks.

#ifndef CORVIN_CLASSIC_ENCODE_MODULATOR_H_
#define CORVIN_CLASSIC_ENCODE_MODULATOR_H_

#include <thread>

#include "classic/encode/dsd_writer.h"
#include "classic/foundation/block_ring.h"
#include "corvin.h"

/// Coefficients of an error-feedback modulator: the state's weights in the signal (A) and in the
/// new state (B). The last ones are 0.
struct ModulatorCoefficients {
  double a[8];
  double b[8];
};

/// Seven poles at 0.85; zeros at DC and at 0.95, 0.74 and 0.42 of pi / `interpolation` (of pi / 64
/// when it is 1), near the top of the audio band.
ModulatorCoefficients DesignModulator(int interpolation);

/// Modulates 8 x `bytes` samples; byte k goes to out[k * stride].
/// @param state  x[0] the newest; kept from call to call
void Modulate(const float* in, int bytes, const ModulatorCoefficients& coefficients,
              double (&state)[8], bool lsb_first, int stride, char* out);

class CORVIN_API CShaper {
 public:
  /// Starts the stage.
  /// @param nb            depth of its input ring
  /// @param A, B          8 coefficients each
  /// @param channels      byte stride in the writer's blocks
  /// @param interleavedWriter  not used: the bytes are the same for either writer
  /// @param lsbFirst      first sample of a byte in its least significant bit
  /// @param L, M          rate plan
  /// @param blockSamples  samples in a block; 0: iSamples * L / M
  CShaper(CWriter* writer, int ch, int nb, double* A, double* B, int channels,
          bool interleavedWriter, bool lsbFirst, int L, int M, int blockSamples = 0);
  CShaper(const CShaper&) = delete;
  CShaper& operator=(const CShaper&) = delete;
  /// Joins the thread.
  ~CShaper();

  CBuffer* Write1Lock(int n, int);
  CBuffer* Read1Lock(int n, int);
  void Abandon() { blocks_.Abandon(); }

 private:
  static void ShaperThread(CShaper* self) { self->Run(); }
  void Run();

  int channel_;
  CWriter* writer_;
  CBufferList blocks_;
  ModulatorCoefficients coefficients_;
  double state_[8] = {};
  int channels_;
  bool lsb_first_;
  std::thread thread_;
};

/// Pack eight floats into a byte, 1 for a value above 0: p[i] at bit i, and at bit 7 - i.
CORVIN_API unsigned char bits_sse_l(float* p);
CORVIN_API unsigned char bits_sse_b(float* p);

#endif  // CORVIN_CLASSIC_ENCODE_MODULATOR_H_
