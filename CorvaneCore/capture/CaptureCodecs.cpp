#include "CorvaneCore/capture/CaptureSession.h"

namespace corvane {

template struct Codec<CaptureSession>;

}  // namespace corvane
