// Replaced as the status menu lands.
