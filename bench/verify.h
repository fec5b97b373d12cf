// orvane-bench --verify: checks that each measured operation and its literal
// version agree on the full-size level, printing every disagreement.
#pragma once

// Runs every check; the number that disagree.
int VerifyAgreement();
