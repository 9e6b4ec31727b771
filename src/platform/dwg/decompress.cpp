#include "platform/dwg/decompress.hpp"

#include "platform/dwg/decompress_input.hpp"

namespace dwg {
namespace {

// One copy of earlier output: `length` bytes from `distance` bytes back, then `literals` bytes
// of input (0: the next opcode may start a longer literal run).
struct Copy {
    std::size_t length = 0, distance = 0, literals = 0;
};

// A long count: each zero byte adds 255, the first non-zero byte ends it and is added.
std::size_t LongCount(CompressedInput& input) {
    std::size_t count = 0;
    std::uint8_t byte = input.next();
    while (byte == 0 && !input.overrun()) {
        count += 0xFF;
        byte = input.next();
    }
    return count + byte;
}

// A literal run's length from its opcode (0x00 to 0x0F): 1 to 15 stand for 4 to 18 bytes,
// 0 for 18 bytes or more in a long count.
std::size_t LiteralLength(CompressedInput& input, std::uint8_t opcode) {
    return (opcode == 0 ? 0x0F + LongCount(input) : opcode) + 3;
}

// The two bytes of distance that follow most copy opcodes; their low two bits are the number
// of literals after the copy.
void TwoByteDistance(CompressedInput& input, Copy& copy) {
    const std::uint8_t first = input.next();
    const std::uint8_t second = input.next();
    copy.distance = (first >> 2) | (second << 6);
    copy.literals = first & 3;
}

// The copy an opcode of 0x10 or more stands for; false for 0x00 to 0x0F, which only start
// literal runs. 0x11, the end code, is handled by the caller.
bool DecodeCopy(CompressedInput& input, std::uint8_t opcode, Copy& copy) {
    if (opcode >= 0x40) {
        copy.length = (opcode >> 4) - 1;
        const std::uint8_t second = input.next();
        copy.distance = (second << 2) | ((opcode & 0x0C) >> 2);
        copy.literals = opcode & 3;
    } else if (opcode >= 0x21) {
        copy.length = opcode - 0x1E;
        TwoByteDistance(input, copy);
    } else if (opcode == 0x20) {
        copy.length = LongCount(input) + 0x21;
        TwoByteDistance(input, copy);
    } else if (opcode >= 0x12 || opcode == 0x10) {
        // Far copies: bit 3 of the opcode is bit 14 of the distance, which starts at 0x3FFF.
        copy.length = opcode == 0x10 ? LongCount(input) + 9 : (opcode & 7) + 2;
        TwoByteDistance(input, copy);
        copy.distance += ((opcode & 8) << 11) + 0x3FFF;
    } else {
        return false;
    }
    return true;
}

}  // namespace

bool Decompress2004(std::span<const std::uint8_t> in, std::size_t limit,
                    std::vector<std::uint8_t>& out, DecompressError& error) {
    out.clear();
    CompressedInput input(in, limit, out, error);
    std::uint8_t opcode = input.next();
    if (!input.overrun() && (opcode & 0xF0) == 0) {
        if (!input.literal(LiteralLength(input, opcode))) return false;
        opcode = input.next();
    }
    while (opcode != 0x11 && !input.overrun()) {
        const std::size_t at = input.position() - 1;
        Copy copy;
        if (!DecodeCopy(input, opcode, copy)) return input.fail(at, "an opcode that is no copy");
        if (!input.copy(copy.distance + 1, copy.length)) return false;
        if (copy.literals == 0) {
            opcode = input.next();
            if (input.overrun() || (opcode & 0xF0) != 0) continue;
            copy.literals = LiteralLength(input, opcode);
        }
        if (!input.literal(copy.literals)) return false;
        opcode = input.next();
    }
    return !input.overrun() || input.fail(in.size(), "the data ends before its end code");
}

}  // namespace dwg
