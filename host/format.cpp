#include "host/format.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace talm {

namespace {

// A wrong width must not make a text that fills the memory.
constexpr int widest = 4096;

enum class Length { none, hh, h, l, ll, j, z, t, L };

/** One "%..." of a format, its widths already read from the arguments. */
struct Conversion {
    char flags[6] = "";
    int width = -1;
    int precision = -1;
    Length length = Length::none;
    char type = 0;
};

/** Copies the arguments, so that they can be handed on by reference. */
class Arguments {
public:
    explicit Arguments(va_list args) { va_copy(list, args); }
    ~Arguments() { va_end(list); }
    Arguments(const Arguments &) = delete;
    Arguments &operator=(const Arguments &) = delete;

    va_list list;
};

const char *readFlags(const char *at, Conversion &out)
{
    size_t count = 0;
    for (; *at && std::strchr("-+ #0'", *at); ++at)
        // Grouping depends on the locale.
        if (*at != '\'' && !std::strchr(out.flags, *at) && count + 1 < sizeof out.flags) {
            out.flags[count++] = *at;
            out.flags[count] = 0;
        }
    return at;
}

const char *readNumber(const char *at, int &out, Arguments &args)
{
    if (*at == '*') {
        out = va_arg(args.list, int);
        return at + 1;
    }
    out = 0;
    for (; std::isdigit(static_cast<unsigned char>(*at)); ++at)
        out = std::min(out * 10 + (*at - '0'), widest);
    return at;
}

const char *readLength(const char *at, Length &out)
{
    switch (*at) {
    case 'h':
        out = at[1] == 'h' ? Length::hh : Length::h;
        return at + (at[1] == 'h' ? 2 : 1);
    case 'l':
        out = at[1] == 'l' ? Length::ll : Length::l;
        return at + (at[1] == 'l' ? 2 : 1);
    case 'j': out = Length::j; return at + 1;
    case 'z': out = Length::z; return at + 1;
    case 't': out = Length::t; return at + 1;
    case 'L': out = Length::L; return at + 1;
    default: return at;
    }
}

/** Read the conversion at a '%'. @return the place after it */
const char *read(const char *at, Conversion &out, Arguments &args)
{
    at = readFlags(at + 1, out);
    if (*at == '*' || std::isdigit(static_cast<unsigned char>(*at)))
        at = readNumber(at, out.width, args);
    if (out.width < -1) {
        std::memmove(out.flags + 1, out.flags, sizeof out.flags - 1);
        out.flags[0] = '-';
        out.flags[sizeof out.flags - 1] = 0;
        out.width = out.width < -widest ? widest : -out.width;
    }
    out.width = std::min(out.width, widest);
    if (*at == '.') {
        at = readNumber(at + 1, out.precision, args);
        out.precision = std::min(out.precision, widest);
    }
    at = readLength(at, out.length);
    out.type = *at;
    return *at ? at + 1 : at;
}

template <typename Value>
void put(std::pmr::string &out, const Conversion &conversion, const char *length, Value value)
{
    char width[12] = "", precision[12] = "", format[48];
    if (conversion.width >= 0)
        std::snprintf(width, sizeof width, "%d", conversion.width);
    if (conversion.precision >= 0)
        std::snprintf(precision, sizeof precision, ".%d", conversion.precision);
    std::snprintf(format, sizeof format, "%%%s%s%s%s%c", conversion.flags, width, precision, length,
                  conversion.type);
    int needed = std::snprintf(nullptr, 0, format, value);
    if (needed <= 0)
        return;
    size_t before = out.size(), size = static_cast<size_t>(needed);
    out.resize(before + size + 1);
    std::snprintf(out.data() + before, size + 1, format, value);
    out.resize(before + size);
}

/** Whatever the locale put between the digits of a real number becomes a point. */
void putReal(std::pmr::string &out, const Conversion &conversion, Arguments &args)
{
    size_t before = out.size();
    if (conversion.length == Length::L)
        put(out, conversion, "L", va_arg(args.list, long double));
    else
        put(out, conversion, "", va_arg(args.list, double));
    auto ofNumber = [](char c) {
        return c && std::strchr("0123456789+- abcdefxpintABCDEFXPINT", c);
    };
    auto from = std::find_if_not(out.begin() + static_cast<ptrdiff_t>(before), out.end(), ofNumber);
    auto to = std::find_if(from, out.end(), ofNumber);
    if (from != to)
        out.replace(from, to, ".");
}

void putSigned(std::pmr::string &out, const Conversion &conversion, Arguments &args)
{
    auto as = [&](auto value) { put(out, conversion, "j", static_cast<intmax_t>(value)); };
    switch (conversion.length) {
    case Length::hh: return as(static_cast<signed char>(va_arg(args.list, int)));
    case Length::h: return as(static_cast<short>(va_arg(args.list, int)));
    case Length::l: return as(va_arg(args.list, long));
    case Length::ll: return as(va_arg(args.list, long long));
    case Length::j: return as(va_arg(args.list, intmax_t));
    case Length::z:
    case Length::t: return as(va_arg(args.list, ptrdiff_t));
    default: return as(va_arg(args.list, int));
    }
}

void putUnsigned(std::pmr::string &out, const Conversion &conversion, Arguments &args)
{
    auto as = [&](auto value) { put(out, conversion, "j", static_cast<uintmax_t>(value)); };
    switch (conversion.length) {
    case Length::hh: return as(static_cast<unsigned char>(va_arg(args.list, unsigned)));
    case Length::h: return as(static_cast<unsigned short>(va_arg(args.list, unsigned)));
    case Length::l: return as(va_arg(args.list, unsigned long));
    case Length::ll: return as(va_arg(args.list, unsigned long long));
    case Length::j: return as(va_arg(args.list, uintmax_t));
    case Length::z:
    case Length::t: return as(va_arg(args.list, size_t));
    default: return as(va_arg(args.list, unsigned));
    }
}

void putText(std::pmr::string &out, const Conversion &conversion, Arguments &args)
{
    if (conversion.length == Length::l)
        return put(out, conversion, "l", va_arg(args.list, const wchar_t *));
    const char *text = va_arg(args.list, const char *);
    put(out, conversion, "", text ? text : "(null)");
}

void putCharacter(std::pmr::string &out, const Conversion &conversion, Arguments &args)
{
    put(out, conversion, "", va_arg(args.list, int));
}

void putOne(std::pmr::string &out, const Conversion &conversion, Arguments &args)
{
    switch (conversion.type) {
    case '%': out += '%'; break;
    case 'd':
    case 'i': putSigned(out, conversion, args); break;
    case 'o':
    case 'u':
    case 'x':
    case 'X': putUnsigned(out, conversion, args); break;
    case 'a':
    case 'A':
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G': putReal(out, conversion, args); break;
    case 'c': putCharacter(out, conversion, args); break;
    case 's': putText(out, conversion, args); break;
    case 'p': put(out, conversion, "", va_arg(args.list, void *)); break;
    case 'n': static_cast<void>(va_arg(args.list, void *)); break;
    default: break;
    }
}

}

void appendFormatted(std::pmr::string &out, const char *format, va_list list)
{
    Arguments args(list);
    while (*format) {
        size_t plain = std::strcspn(format, "%");
        out.append(format, plain);
        format += plain;
        if (!*format)
            break;
        Conversion conversion;
        format = read(format, conversion, args);
        putOne(out, conversion, args);
    }
}

}
