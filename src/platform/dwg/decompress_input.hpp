#pragma once
// The input and output of a decompression: reading past the input's end gives zeros and marks
// the input overrun; copies and literal runs check the output limit and the input's end.
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/dwg/decompress.hpp"

namespace dwg {

class CompressedInput {
public:
    CompressedInput(std::span<const std::uint8_t> in, std::size_t limit,
                    std::vector<std::uint8_t>& out, DecompressError& error)
        : in_(in), limit_(limit), out_(out), error_(error) {}

    std::uint8_t next() {
        if (at_ >= in_.size()) {
            overrun_ = true;
            return 0;
        }
        return in_[at_++];
    }
    std::size_t position() const { return at_; }
    bool overrun() const { return overrun_; }
    bool done() const { return at_ >= in_.size(); }

    // Sets the error; false, for `return input.fail(...)`.
    bool fail(std::size_t at, std::string reason) {
        error_ = {at, std::move(reason)};
        return false;
    }

    // Copies `length` bytes of output from `distance` bytes back (the copy may overlap itself).
    bool copy(std::size_t distance, std::size_t length) {
        if (!room(length)) return false;
        if (length == 0) return true;
        if (distance == 0 || distance > out_.size())
            return fail(at_, "a copy reaches before the start of the data");
        const std::size_t from = out_.size() - distance;
        for (std::size_t i = 0; i < length; ++i) out_.push_back(out_[from + i]);
        return true;
    }

    // The next `length` bytes of input, appended to the output in order.
    bool literal(std::size_t length) {
        const std::span<const std::uint8_t> bytes = take(length);
        if (bytes.size() != length) return false;
        out_.insert(out_.end(), bytes.begin(), bytes.end());
        return true;
    }

    // The next `length` bytes of input, checked against the input's end and the output limit;
    // empty (with the error set) when they are not there.
    std::span<const std::uint8_t> take(std::size_t length) {
        if (!room(length)) return {};
        if (length > in_.size() - at_) {
            fail(in_.size(), "the data ends inside a literal run");
            return {};
        }
        at_ += length;
        return in_.subspan(at_ - length, length);
    }

private:
    bool room(std::size_t length) {
        if (overrun_) return fail(in_.size(), "the data ends inside an instruction");
        if (length > limit_ - out_.size())
            return fail(at_, "the data decompresses past its size of " + std::to_string(limit_));
        return true;
    }

    std::span<const std::uint8_t> in_;
    std::size_t at_ = 0;
    bool overrun_ = false;
    std::size_t limit_;
    std::vector<std::uint8_t>& out_;
    DecompressError& error_;
};

}  // namespace dwg
