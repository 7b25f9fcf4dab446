#include "tools/vxsh/options.h"

#include <string_view>

namespace vxsh {

namespace {

struct Topic {
    std::string_view name;
    std::string_view usage;
    std::string_view text;
};

constexpr Topic topics[] = {
    {"", "vxsh [COMMAND]",
     R"(Evaluates formulas with units, and files of parameters that are made of them.

Commands:
  eval FORMULA                 the formula's number
  value FORMULA                its value with its kind: number, vector, point or text
  tree FORMULA                 how it is read, as a tree
  names FORMULA                the names it refers to
  replace NAME TEXT FORMULA    the formula with TEXT in place of NAME
  derive --by NAME FORMULA     its derivative
  units                        the units it may hold
  run FILE                     every parameter of a file, in a table
  (none)                       a console in which parameters are defined and asked for

  --help                       this text, or behind a command that command's
  --version                    the version

Formulas: + - * / ^  < > =  ! & |  CONDITION then VALUE else VALUE  sin(30)
          3.in + 2.cm  [a name with operators]*2  "text"  vector(1, 2, 3)
Angles are degrees. Quote formulas, so that the shell leaves them alone.

Exit status: 0 done, 1 a formula or a parameter failed, 2 wrong usage.
)"},
    {"eval", "vxsh eval [--unit NAME] [--set NAME=FORMULA]... [--rad] FORMULA",
     R"(Prints the number that the formula gives, in base units: mm, kg, degrees.

  --unit NAME          gives the result in this unit
  --set NAME=FORMULA   defines a variable, which may have a unit; may be repeated
  --rad                angles of sin, cos, ... are radians

  vxsh eval --unit cm '1.in + 1.cm'
  vxsh eval --set 'width=3.in' --set 'half=width/2' --unit mm 'half + 1'
)"},
    {"value", "vxsh value [--set NAME=FORMULA]... [--rad] FORMULA",
     R"(Prints the kind of the formula's value and the value: Number, Vector, Point or
String.

  --set NAME=FORMULA   defines a variable, which may have a unit; may be repeated
  --rad                angles of sin, cos, ... are radians

  vxsh value 'vector(1, 2, 3)*2'
  vxsh value 'time()'
)"},
    {"tree", "vxsh tree FORMULA",
     R"(Prints the tree that the formula is read as.

  vxsh tree '2*(a + 3.cm)'
)"},
    {"names", "vxsh names FORMULA",
     R"(Prints the names that the formula refers to, one a line, in order of appearance.

  vxsh names 'width*[plate thickness] + 2'
)"},
    {"replace", "vxsh replace NAME TEXT FORMULA",
     R"(Prints the formula with TEXT in place of every NAME that stands as a whole word.

  vxsh replace a '(b + 1)' 'a + ab*a'
)"},
    {"derive", "vxsh derive --by NAME [--set NAME=FORMULA]... FORMULA",
     R"(Prints the value of the formula's derivative with respect to a variable.

  --by NAME            the variable
  --set NAME=FORMULA   gives a variable its value; may be repeated

  vxsh derive --by x --set x=3 'x^2'
)"},
    {"units", "vxsh units",
     R"(Lists the units: name, factor to the base unit of its class, class.
)"},
    {"run", "vxsh run [--csv] [--journal FILE] [--rad] FILE",
     R"(Evaluates a file of parameters and prints a table of name, value and unit. The
file - is the standard input. One parameter a line, in any order:

  # a comment
  NAME = FORMULA
  NAME : UNIT = FORMULA

A parameter that fails says why on the standard error, and so do those that
depend on it; the others are evaluated.

  --csv            prints comma-separated values
  --journal FILE   appends every parameter and its value to this file
  --rad            angles of sin, cos, ... are radians
)"},
};

const Topic &find(std::string_view name)
{
    for (const Topic &topic : topics)
        if (topic.name == name)
            return topic;
    return topics[0];
}

}

std::string helpText(const std::string &topic)
{
    const Topic &found = find(topic);
    return "Usage: " + std::string(found.usage) + "\n\n" + std::string(found.text);
}

std::string usageLine(const std::string &topic)
{
    return "Usage: " + std::string(find(topic).usage);
}

}
