# Headers, library, package files, host and man page.
