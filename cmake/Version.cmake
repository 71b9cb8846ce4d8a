# The one place for what a release is called. Every resource, package and program takes it from here.
set(KESTREL_VERSION 1.0.0)
set(KESTREL_BUILD 1)          # 0 to 511, counted anew for each version
set(KESTREL_MACOS_MINIMUM 11.0)
