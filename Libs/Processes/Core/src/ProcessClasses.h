#pragma once

// Every class that a configuration can name under "Processes", with the record of its section. The agent
// registers its makers from this list, and the tools check configurations by it. The list names classes of
// modules above, so whoever expands it includes what the expansion needs.
//
//   #define WithSection(Class, Config) ...
//   #define WithoutSection(Class) ...
//   MORVANE_PROCESS_CLASSES(WithSection, WithoutSection)
#define MORVANE_PROCESS_CLASSES(WithSection, WithoutSection)                                           \
    WithSection(DiskQuota, DiskQuotaConfig) WithSection(Packager, PackagerConfig)                      \
        WithSection(ProcessMonitor, ProcessMonitorConfig) WithoutSection(Shutdowner)                   \
            WithoutSection(SingletonAssurance) WithSection(UploaderPresigned, UploaderPresignedConfig) \
                WithSection(UploaderS3, UploaderS3Config) WithSection(Watcher, WatcherConfig)

// The same for "Components".
#define MORVANE_COMPONENT_CLASSES(Component) Component(CloudComponent)
