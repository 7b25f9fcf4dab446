#pragma once

// What nearly every test needs.

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "platform/os/os.h"
#include "platform/os/test_values.h"
#include "tests/support/captured_output.h"
#include "tests/support/child.h"
#include "tests/support/code_page.h"
#include "tests/support/faults.h"
#include "tests/support/host.h"
#include "tests/support/options.h"
#include "tests/support/random.h"
#include "tests/support/temp_folder.h"

namespace vx {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using testing::StartsWith;
using Texts = std::vector<std::string>;

}
