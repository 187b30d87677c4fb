// The directory client's own costs. With "fetch ADDRESS USER PASSWORD BASE" it signs in and reads
// what lies below the base into a table, as a process to be timed; without arguments it prints a
// table line a figure for sorting, encoding and decoding.
#include <cstdint>
#include <cstring>
#include <memory>

#include "bench/Timing.h"
#include "ldap/LDAPSession.h"
#include "ldap/LDAPTable.h"
#include "ldap/ldap_rx.h"
#include "ldap/ldap_tx.h"

namespace {

constexpr int kSubtree = 2;
constexpr size_t kRows = 100000;
constexpr int kMessages = 20000;
constexpr double kMegabyte = 1 << 20;

int Fetch(const char* address, const char* user, const char* password, const char* base) {
    try {
        LDAPSession session(address, user, password, nullptr);
        if (session.Search(base, kSubtree, "(objectclass=*)", nullptr, 0, 0, 0, 0) != 0) return 1;
        LDAPTable rows;
        rows.Fetch(session, /*append=*/true, /*unique=*/false);
        return printf("%d\n", rows.GetRowCount()) > 0 ? 0 : 1;
    } catch (const char*) {
        return 1;  // reported where it was thrown
    }
}

double SortRows(size_t count) {
    LDAPTable table;
    uint32_t number = 1;
    for (size_t i = 0; i < count; ++i) {
        number = number * 1664525 + 1013904223;  // in no order
        LDAPRow row;
        row.Field("dn", "cn=User %u,cn=Users", number);
        row.Field("cn", "User %u", number);
        table += row;
    }
    return Seconds([&] { table.Sort("+$cn"); });
}

// An entry of the size that a telephone user has.
std::unique_ptr<LDAPMessage_tx> MakeEntry() {
    auto attributes = std::make_unique<ASN1Sequence>();
    for (int i = 0; i < 12; ++i) {
        auto values = std::make_unique<ASN1Sequence>();
        values->tag = 0x31;
        values->Add2Seq(new ASN1String("a value of the usual length", 0));
        auto attribute = std::make_unique<ASN1Sequence>();
        attribute->Add2Seq(new ASN1String(("attribute" + std::to_string(i)).c_str(), 0));
        attribute->Add2Seq(values.release());
        attributes->Add2Seq(attribute.release());
    }
    auto message = std::make_unique<LDAPMessage_tx>(1);
    message->Add2Seq(new LDAPSearchResp_tx("cn=A User,cn=Users", attributes.release()));
    return message;
}

LDAPBytes Encode(ASN1Type& message) {
    LDAPBytes bytes;
    bytes.size = message.Length();
    bytes.data = std::make_unique<unsigned char[]>(bytes.size);
    unsigned char* out = bytes.data.get();
    message.BerEncode(out);
    return bytes;
}

void PrintThroughput(const char* what, double seconds) {
    const auto bytes = static_cast<double>(Encode(*MakeEntry()).size) * kMessages;
    Row(what, bytes / kMegabyte / seconds, "MB/s", "messages of entries with 12 attributes");
}

double EncodeMessages() {
    return Seconds([] {
        for (int i = 0; i < kMessages; ++i)
            Encode(*MakeEntry());
    });
}

double DecodeMessages() {
    const LDAPBytes encoded = Encode(*MakeEntry());
    return Seconds([&] {
        for (int i = 0; i < kMessages; ++i) {
            LDAPBytes copy{std::make_unique<unsigned char[]>(encoded.size), encoded.size};
            std::memcpy(copy.data.get(), encoded.data.get(), encoded.size);
            int err = 0;
            const std::unique_ptr<LDAPMessage_rx> message(
                LDAPMessage_rx::Decode(std::move(copy), &err));
            if (message == nullptr) std::abort();
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 6 && std::strcmp(argv[1], "fetch") == 0)
        return Fetch(argv[2], argv[3], argv[4], argv[5]);
    Linear("sort 100,000 rows by name", kRows, SortRows);
    PrintThroughput("build and encode directory messages", Best(EncodeMessages));
    PrintThroughput("decode directory messages", Best(DecodeMessages));
}
