#include "platform/dwg/decompress.hpp"

#include <algorithm>

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

namespace dwg {
namespace {

// 2007 literal runs are stored in pieces of 1 to 8 bytes in reverse order, runs of more than
// 32 bytes in 32-byte blocks. The pieces of a block of n bytes, as sizes from the start of the
// output; a piece of 2 or 3 bytes is also stored reversed, pieces of 1, 4 and 8 bytes as they are.
constexpr std::uint8_t kLiteralPieces[33][7] = {
    {},
    {1},
    {2},
    {3},
    {4},
    {1, 4},
    {1, 4, 1},
    {2, 4, 1},
    {8},
    {1, 8},
    {1, 8, 1},
    {2, 8, 1},
    {4, 8},
    {1, 4, 8},
    {1, 4, 8, 1},
    {2, 4, 8, 1},
    {8, 8},
    {8, 1, 8},
    {1, 8, 8, 1},
    {3, 8, 8},
    {4, 8, 8},
    {1, 4, 8, 8},
    {2, 4, 8, 8},
    {3, 4, 8, 8},
    {8, 8, 8},
    {8, 1, 8, 8},
    {1, 8, 1, 8, 8},
    {2, 8, 1, 8, 8},
    {4, 8, 8, 8},
    {1, 4, 8, 8, 8},
    {2, 4, 8, 8, 8},
    {1, 4, 8, 8, 8, 2},
    {8, 8, 8, 8},
};

// Appends a block of up to 32 literal bytes in output order: the last stored piece comes first.
void AppendLiteralBlock(std::span<const std::uint8_t> stored, std::vector<std::uint8_t>& out) {
    std::size_t end = stored.size();
    for (std::uint8_t piece : kLiteralPieces[stored.size()]) {
        if (piece == 0) break;
        const std::size_t from = end - piece;
        if (piece == 2 || piece == 3) {
            out.insert(out.end(), stored.rend() - static_cast<std::ptrdiff_t>(end),
                       stored.rend() - static_cast<std::ptrdiff_t>(from));
        } else {
            out.insert(out.end(), stored.begin() + static_cast<std::ptrdiff_t>(from),
                       stored.begin() + static_cast<std::ptrdiff_t>(end));
        }
        end = from;
    }
}

bool Literal2007(CompressedInput& input, std::size_t length, std::vector<std::uint8_t>& out) {
    const std::span<const std::uint8_t> stored = input.take(length);
    if (stored.size() != length) return false;
    for (std::size_t at = 0; at < length; at += 32) {
        AppendLiteralBlock(stored.subspan(at, std::min<std::size_t>(32, length - at)), out);
    }
    return true;
}

// A literal run's length from an opcode of 0x00 to 0x0F: 8 to 0x16, or from 0x17 on with a
// byte and, after a 0xFF, 16-bit words until one is not 0xFFFF.
std::size_t LiteralLength2007(CompressedInput& input, std::uint8_t opcode) {
    std::size_t length = opcode + 8u;
    if (length != 0x17) return length;
    const std::size_t byte = input.next();
    length += byte;
    if (byte != 0xFF) return length;
    for (;;) {
        std::size_t word = input.next();
        word |= static_cast<std::size_t>(input.next()) << 8;
        length += word;
        if (word != 0xFFFF || input.overrun()) return length;
    }
}

// A copy instruction: its length, its distance back, and the last byte read, whose low three
// bits count the literals after the copy.
struct Instruction {
    std::size_t length = 0, distance = 0;
    std::uint8_t last = 0;
};

Instruction ReadInstruction(CompressedInput& input, std::uint8_t opcode) {
    Instruction in;
    switch (opcode >> 4) {
        case 0: {  // 0xF0-0xFF with the high half cleared: long copies from 0x13 bytes
            const std::size_t low = input.next();
            in.last = input.next();
            in.length = (opcode & 0x0F) + 0x13 + ((in.last >> 3) & 0x10);
            in.distance = ((in.last & 0x78) << 5) + 1 + low;
            break;
        }
        case 1: {
            const std::size_t low = input.next();
            in.last = input.next();
            in.length = (opcode & 0x0F) + 3;
            in.distance = ((in.last & 0xF8) << 5) + 1 + low;
            break;
        }
        case 2: {
            in.distance = input.next();
            in.distance |= static_cast<std::size_t>(input.next()) << 8;
            in.length = opcode & 7;
            if ((opcode & 8) == 0) {
                in.last = input.next();
                in.length += in.last & 0xF8;
            } else {
                ++in.distance;
                in.length += static_cast<std::size_t>(input.next()) << 3;
                in.last = input.next();
                in.length += (static_cast<std::size_t>(in.last & 0xF8) << 8) + 0x100;
            }
            break;
        }
        default:
            in.length = opcode >> 4;
            in.last = input.next();
            in.distance = ((in.last & 0xF8) << 1) + (opcode & 0x0F) + 1;
            break;
    }
    return in;
}

}  // namespace

bool Decompress2007(std::span<const std::uint8_t> in, std::size_t limit,
                    std::vector<std::uint8_t>& out, DecompressError& error) {
    out.clear();
    CompressedInput input(in, limit, out, error);
    std::uint8_t opcode = input.next();
    std::size_t literals = 0;
    if ((opcode & 0xF0) == 0x20) {  // a copy of nothing: only its literal count
        input.next();
        input.next();
        literals = input.next() & 7;
        if (literals == 0) opcode = input.next();  // then a literal run's length opcode
    }
    while (!input.done()) {
        if (literals == 0) literals = LiteralLength2007(input, opcode);
        if (!Literal2007(input, literals, out)) return false;
        if (input.done()) break;
        Instruction copy = ReadInstruction(input, input.next());
        for (;;) {
            if (!input.copy(copy.distance, copy.length)) return false;
            literals = copy.last & 7;
            if (literals != 0 || input.done()) break;
            opcode = input.next();
            if ((opcode >> 4) == 0) break;  // a literal run's length follows
            copy = ReadInstruction(input, (opcode >> 4) == 0x0F ? opcode & 0x0F : opcode);
        }
    }
    return !input.overrun() || input.fail(in.size(), "the data ends inside an instruction");
}

}  // namespace dwg
