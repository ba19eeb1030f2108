#pragma once

// QR9_KERNEL stands before a function whose loops the compiler vectorises. One binary serves every machine:
// the loader picks the variant that the processor can run.
#ifdef QR9_RUNTIME_INSTRUCTION_SET
#define QR9_KERNEL __attribute__((target_clones("avx2", "default")))
#else
#define QR9_KERNEL
#endif
