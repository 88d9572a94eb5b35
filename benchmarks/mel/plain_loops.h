// The arithmetic of the benchmarked expressions alone, on flat arrays that exist before the first call.
#pragma once

namespace plain {

/// x = sin(x)*0.5 + y*z; if (y > 0) y *= 2; over n points of three doubles.
void pointLoop(int n);
/// e = sin(e)*0.5 + f*g over n doubles.
void arrayLoop(int n);

}  // namespace plain
