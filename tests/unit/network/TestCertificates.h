// TestCertificates.h: certificates made for one run, below a folder of their own.
#pragma once

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstdlib>
#include <memory>
#include <string>

class TestCertificates {
  public:
    TestCertificates() {
        char pattern[] = "/tmp/lumora-tls-XXXXXX";
        folder_ = mkdtemp(pattern);
        Make("good", /*fromDays=*/-1, /*toDays=*/1, nullptr);
        Make("other", -1, 1, nullptr);
        Make("expired", -3, -1, nullptr);
        Make("locked", -1, 1, "secret");
    }
    ~TestCertificates() {
        for (const char* name : {"good", "other", "expired", "locked"})
            for (const char* kind : {".crt", ".key"})
                std::remove((folder_ + "/" + name + kind).c_str());
        std::remove(folder_.c_str());
    }
    std::string Certificate(const char* name) const { return folder_ + "/" + name + ".crt"; }
    std::string Key(const char* name) const { return folder_ + "/" + name + ".key"; }

  private:
    // A self-signed certificate and its key, which `passphrase` encrypts.
    void Make(const char* name, long fromDays, long toDays, const char* passphrase) {
        const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"),
                                                                      EVP_PKEY_free);
        const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
        X509* const x = certificate.get();
        ASN1_INTEGER_set(X509_get_serialNumber(x), 1);
        X509_gmtime_adj(X509_getm_notBefore(x), fromDays * 86400);
        X509_gmtime_adj(X509_getm_notAfter(x), toDays * 86400);
        X509_NAME* const subject = X509_get_subject_name(x);
        X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>(name), -1, -1, 0);
        X509_set_issuer_name(x, subject);
        X509_set_pubkey(x, key.get());
        X509_sign(x, key.get(), EVP_sha256());

        FILE* file = std::fopen(Certificate(name).c_str(), "w");
        PEM_write_X509(file, x);
        std::fclose(file);
        file = std::fopen(Key(name).c_str(), "w");
        PEM_write_PrivateKey(file, key.get(), passphrase != nullptr ? EVP_aes_256_cbc() : nullptr,
                             nullptr, 0, nullptr, const_cast<char*>(passphrase));
        std::fclose(file);
    }

    std::string folder_;
};
