#pragma once

#include "core/CpuSampler.h"
#include "core/DiskSampler.h"
#include "core/NetSampler.h"
#include "core/ProcessSampler.h"
#include "core/platform.h"

/// The handle behind the flat interface: one instance of each sampler that measures against its previous
/// call, and the files they read from. C++ callers use the samplers directly and so keep texts and lists
/// shared; the sc_ functions copy into flat records. Belongs to one thread at a time.
struct SCSampler {
    explicit SCSampler(const sysinfo::SystemRoot& machine)
        : root(machine), readers(sysinfo::platform::openReaders(root)), processes(root), disk(root) {}

    sysinfo::SystemRoot root;
    std::shared_ptr<sysinfo::platform::Readers> readers;
    sysinfo::ProcessSampler processes;
    sysinfo::CpuSampler cpu;
    sysinfo::NetSampler net;
    sysinfo::DiskSampler disk;
};
