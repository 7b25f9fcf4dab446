#pragma once

// The console's answers, apart from where lines come from.

#include <string>

#include "tools/vxsh/model.h"

namespace vxsh {

struct Reply {
    std::string out; ///< whole lines for the standard output
    std::string err; ///< whole lines for the standard error
    bool quit = false;
};

class Console {
public:
    /** Define, change, evaluate, or obey a command word. */
    Reply answer(const std::string &line);

    const Model &model() const { return model_; }

private:
    Reply define(const std::string &line);
    Reply evaluate(const std::string &line);
    Reply save(const std::string &file) const;
    Reply load(const std::string &file);
    void tell(Model::Index index, Reply &reply) const;

    Model model_;
};

}
