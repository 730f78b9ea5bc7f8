// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What stands between the two rings of a stream. The converters start nothing by themselves: a
// class that derives from them places the stages, of whatever classes, and they end them in order.

#ifndef CORVIN_CLASSIC_STREAM_CONVERTER_H_
#define CORVIN_CLASSIC_STREAM_CONVERTER_H_

#include <memory>
#include <vector>

#include "corvin.h"

/// The last stage of a converter.
class ConverterWriter {
 public:
  virtual ~ConverterWriter() = default;
  /// Waits for the end and returns the conversion's result.
  virtual int Wait() = 0;
};

/// The stages of a converter.
class StreamConverter {
 public:
  StreamConverter(const StreamConverter&) = delete;
  StreamConverter& operator=(const StreamConverter&) = delete;
  /// Ends the channels' stages in turn, then the reader, then, after its thread, the writer.
  virtual ~StreamConverter();

 protected:
  StreamConverter() = default;

  /// Calls progress(context) every half second until it returns false, or for ever without it, then
  /// waits for the writer and returns its result; 0 without a writer.
  int PollAndWait(bool (*progress)(void*), void* context);

  std::vector<std::shared_ptr<void>> channel_stages_;  ///< each joins its thread when it goes
  std::shared_ptr<void> reader_;
  std::unique_ptr<ConverterWriter> writer_;
};

/// The converter of a decoding stream.
class CORVIN_API CDSDtoPCM : public StreamConverter {
 public:
  /// Keeps nothing and starts no thread: what is written into the stream stays there.
  CDSDtoPCM(CorvinReadCallback readProc, void* readContext, CorvinReadCallback writeProc,
            void* writeContext, int channels, int dsdRate, int pcmRate, int bits);
  ~CDSDtoPCM() override;

  int Translate(bool (*progress)(void*), void* context);
};

/// The converter of an encoding stream, of the same kind.
class CORVIN_API CPCMtoDSD2 : public StreamConverter {
 public:
  CPCMtoDSD2(CorvinReadCallback readProc, void* readContext, CorvinReadCallback writeProc,
             void* writeContext, int channels, int dsdRate, int pcmRate, int bits);
  ~CPCMtoDSD2() override;

  int Translate(bool (*progress)(void*), void* context);
};

#endif  // CORVIN_CLASSIC_STREAM_CONVERTER_H_
