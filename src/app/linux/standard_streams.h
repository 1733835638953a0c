#pragma once

namespace orbinex {

/// To be called before anything opens a file. Standard streams that the program was started without become
/// /dev/null, so that no file of its own takes their place. A reader of our output that goes away, or a
/// terminal that belongs to another job, makes reading or writing fail and does not end or stop the program:
/// it may be holding keys down.
void prepareStandardStreams();

}  // namespace orbinex
