#pragma once

#include <vector>

#include "client/BinaryRequest.h"

/// One of each kind whose answer is read in a way of its own.
inline const std::vector<station::BinaryRequest>& sampleRequests() {
    using station::BinaryRequest;
    static const std::vector<BinaryRequest> kRequests = {
        BinaryRequest::encode("status", {}),
        BinaryRequest::encode("status", {"01"}),
        BinaryRequest::encode("ack", {}),
        BinaryRequest::encode("audio", {"activate"}),
        BinaryRequest::encode("blockdev", {"read", "180", "0", "1", "2", "3"}),
        BinaryRequest::encode("diag", {"cksum", "0", "0", "8"}),
        BinaryRequest::encode("exec", {"command", "1", "echo"}),
        BinaryRequest::encode("i2c", {"read", "0", "3", "80"}),
        BinaryRequest::encode("i2c", {"getattributes", "0", "1"}),
        BinaryRequest::encode("memory", {"read", "16bit", "2", "0"}),
        BinaryRequest::encode("memory", {"read", "8bitcrc", "2", "0"}),
        BinaryRequest::encode("memory", {"write", "8bitcrc", "1", "0", "hex(01)", "1"}),
        BinaryRequest::encode("port", {"read", "3"}),
        BinaryRequest::encode("port", {"getattributes"}),
        BinaryRequest::encode("serial", {"get", "1", "4"}),
        BinaryRequest::encode("serial", {"getall", "241"}),
        BinaryRequest::raw({"hex(03 73 01)"}),
    };
    return kRequests;
}
