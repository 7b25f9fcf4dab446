// Parameter files of any bytes: read, put in order, and shown.

#include "fuzz/fuzz.h"
#include "tools/vxsh/conditional.h"
#include "tools/vxsh/diagnostic.h"
#include "tools/vxsh/name_scan.h"
#include "tools/vxsh/parameter_file.h"

namespace {

bool within(vxsh::Span span, size_t size)
{
    return span.at <= size && span.length <= size - span.at;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    vxsh::ParameterFile file = vxsh::readParameters(textFrom(0, data, size));
    for (const vxsh::Definition &definition : file.definitions) {
        require(!definition.name.empty() && within(definition.formulaAt, definition.line.size()));
        std::string formula = definition.formula();
        for (const vxsh::NameToken &token : vxsh::nameTokens(formula))
            require(within(token.place, formula.size()));
        if (auto parts = vxsh::splitConditional(formula))
            for (vxsh::Span part : {parts->condition, parts->thenPart, parts->elsePart})
                require(within(part, formula.size()));
        std::string reference = vxsh::asReference(definition.name);
        vxsh::looksLikeDefinition(definition.line);
        require(reference.size() >= definition.name.size());
    }
    for (const vxsh::RefusedLine &line : file.refused)
        require(vxsh::renderProblem("f", line.definition.line, line.definition.number, line.problem) != "");
    return 0;
}
