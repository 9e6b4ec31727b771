#pragma once
// The top of the system: reads the hand-off, sends each drawing of the part that is not yet
// done through the pipeline, merges all drawings of the part into one, removes the hand-off and
// the single drawings, and arms the timer that closes the host.
void RunBatch();
