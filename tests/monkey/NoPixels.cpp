// A renderer that draws nothing, in the place of the real one: what counts here is what the program does.
#include "platform/Surface.h"

namespace quarnel {

void BitBlt(Surface&, int, int, int, int, const Surface&, int, int, RasterOp) {}

} // namespace quarnel
