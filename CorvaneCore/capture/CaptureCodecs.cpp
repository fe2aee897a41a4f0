#include "CorvaneCore/capture/CaptureSession.h"

namespace corvane {

template struct RecordCodec<CaptureSession>;

}  // namespace corvane
