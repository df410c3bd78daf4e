#pragma once

namespace veltrane::imaging {

/// Whether the processor has what the faster paths want; asked while running, because one build runs on all.
/// Always false on other kinds of processors.
[[nodiscard]] bool HasAvx2() noexcept;
[[nodiscard]] bool HasBmi2() noexcept;

/// Makes both say no for as long as it lives, so that tests reach the paths for every processor.
class OldProcessor {
public:
    OldProcessor() noexcept;
    ~OldProcessor();
    OldProcessor(const OldProcessor&) = delete;
    OldProcessor& operator=(const OldProcessor&) = delete;
};

} // namespace veltrane::imaging
