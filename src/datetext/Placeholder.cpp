// Replaced as the date-text engine lands.
