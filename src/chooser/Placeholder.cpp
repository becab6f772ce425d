// Replaced as the chooser lands.
