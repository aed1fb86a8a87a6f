// The failure text built from a combined status word, the operation's flags and the users holding
// the files: every explained line ends the text with a line break, and named users all appear.
#include "errorreporting.h"

#include <hostmocks.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

using ::testing::_;
using ::testing::DoAll;
using ::testing::Return;
using ::testing::SetArgReferee;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // 4 bytes of status word, 1 byte choosing the operation, then users separated by line breaks.
    if (size < 5)
        return 0;
    unsigned combined = 0;
    std::memcpy(&combined, data, sizeof combined);
    const std::set<unsigned>* flagSets[] = {&hbrc::internal::kCheckOutErrorFlags,
                                            &hbrc::internal::kMarkForAddErrorFlags,
                                            &hbrc::internal::kMarkForDeleteErrorFlags};
    const std::set<unsigned>& flags = *flagSets[data[4] % 3];
    kel4::List<std::string> users;
    const std::string rest(reinterpret_cast<const char*>(data) + 5, size - 5);
    for (std::size_t start = 0; start < rest.size();) {
        const std::size_t end = std::min(rest.find('\n', start), rest.size());
        users.push_back(rest.substr(start, end - start));
        start = end + 1;
    }
    using hbrc::test::MockFileVersionControl;
    KELPtr<::testing::NiceMock<MockFileVersionControl>> service(new ::testing::NiceMock<MockFileVersionControl>);
    ON_CALL(*service, GetUsersOfFiles(_, _, _, _))
        .WillByDefault(DoAll(SetArgReferee<2>(users), Return(kelResult(0))));
    std::string message = "Cannot checkout the assets\n";
    hbrc::internal::AddErrorString(service, nullptr, {"/ws/a.kel"}, combined, flags, "depot says no", message);
    if (message.empty() || message.back() != '\n')
        std::abort();
    return 0;
}
