-- Rows that need each of the repairs, for rehearsing them on the local server:
--
--   scripts/db.sh create repairs_demo
--   scripts/db.sh sql repairs_demo < samples/repairs/seed.sql
--   ./CorvanaDataImporter -org REPAIR -type fixTransfers -year 0     (and the other repair types)
--
-- A fictional raptor and aquatic rehabilitation centre. Keys are given
-- explicitly so that the repairs' logs name the same rows on every load.

SET SESSION sql_mode = 'NO_ENGINE_SUBSTITUTION';

-- Patients. Flag bit 41 ("Greater than 180 days reported") = 2199023255552.
--   1  bit 41 alone
--   2  bit 41 with bits 0, 13 and 46 (Critical, Non-releasable, Resident)
--   3  bit 41 with bits 52 and 63 (a negative value)
--   4  bit 46 alone, not for the 180-day repair
--   5  no flags; blood counts
--   6  bit 40, the neighbour of bit 41, not for the 180-day repair
INSERT INTO patient (id, patient_id, name, species, status, location, ageIn, age, sex, flags,
                     admission_date, injury_cause) VALUES
  (1, '2014-0112', 'Juniper', 'RTHA', 'Reh', 'Flight cage 2', 'HY', 'HY', 'F',
   2199023255552, '2014-03-12', 'Vehicle collision'),
  (2, '2014-0187', 'Moss', 'GHOW', 'PR', 'Raptor mews A', 'AHY', 'AHY', 'M',
   72567767441409, '2014-04-02', 'Entanglement'),
  (3, '2014-0203', 'Tamarack', 'BAEA', 'Reh', 'Flight cage 2', 'SA', 'SA', 'UNK',
   -9218866238204149760, '2014-04-19', 'Lead toxicosis'),
  (4, '2014-0251', 'Pip', 'AMKE', 'PR', 'Raptor mews A', 'AHY', 'AHY', 'F',
   70368744177664, '2014-05-06', 'Imprinted'),
  (5, '2014-0318', '', 'COHA', 'Reh', 'Hospital room', 'HY', 'HY', 'M',
   0, '2014-05-30', 'Window strike'),
  (6, '2014-0342', '', 'BNOW', 'Reh', 'Hospital room', 'UNK', 'UNK', 'UNK',
   1099511627776, '2014-06-01', 'Fell from nest');

-- Record entries. Notes of more than 80 characters on a line are for the
-- line-length repair; entries 7 to 14 carry the blood counts.
INSERT INTO record_entry (id, patient_id, notes, date, who, weight, keel, location, amountFed, special) VALUES
  (1, 1, 'Presented by a motorist who found the bird at the roadside; the bird''s right wing droops and there is dried blood on the carpus. Alert, able to stand, keel 2/5. Started fluids SQ 30 ml/kg, meloxicam 0.5 mg/kg PO, cage rest in a darkened box. Recheck wing under sedation tomorrow.',
   '2014-03-12 12:00:00', 'NA', 1120, 2, 'NA', -1, '0'),
  (2, 1, 'Weight 1120 g. Eating well, cast this morning.',
   '2014-03-20 12:00:00', 'NA', 1120, 3, 'NA', -1, '0'),
  (3, 2, NULL, '2014-04-02 12:00:00', 'NA', 1480, 0, 'NA', -1, '0'),
  (4, 2, 'Patient record imported into Corvana\n------------------------------------\nHistory: found hanging from a soccer goal net by one wing, cut free by the groundskeeper; radiographs saved to R:\\rads\\2014\\0187, no fractures seen, soft tissue swelling only.',
   '2014-04-02 12:00:00', 'NA', 0, 0, 'NA', -1, '0'),
  (5, 3, 'Labs:WBC=12.5;HET=68%;LYM=27%;MON=3%;EOS=2%;BAS=0%;PCV=41%;TS=4.2;Fibrinogen=200;Smear:no-hemoparasites-seen;Chem:AST=310;CK=1250;UA=9.8;Glu=312;Ca=9.9;Phos=4.1;Na=152;K=2.9;Cl=118;Alb=1.2;Glob=2.4;TP',
   '2014-04-19 12:00:00', 'NA', 4350, 0, 'NA', -1, '0'),
  (6, 3, 'Radiogram L-wing:closed-fracture/distal-ulna;radius-intact;callus-forming;recheck-in-14-d vet-signed',
   '2014-04-21 12:00:00', 'NA', 4310, 0, 'NA', -1, '0'),
  (7, 5, 'CBC drawn before surgery.', '2014-06-02 12:00:00', 'NA', 410, 0, 'NA', -1, '0'),
  (8, 5, 'CBC recheck.', '2014-06-09 12:00:00', 'NA', 402, 0, 'NA', -1, '0'),
  (9, 5, 'CBC recheck.', '2014-06-16 12:00:00', 'NA', 415, 0, 'NA', -1, '0'),
  (10, 6, 'CBC on admission.', '2014-06-03 12:00:00', 'NA', 380, 0, 'NA', -1, '0'),
  (11, 6, 'CBC recheck, sample clotted.', '2014-06-10 12:00:00', 'NA', 392, 0, 'NA', -1, '0'),
  (12, 6, 'CBC recheck.', '2014-06-17 12:00:00', 'NA', 401, 0, 'NA', -1, '0'),
  (13, 6, 'CBC recheck, counter fault.', '2014-06-24 12:00:00', 'NA', 405, 0, 'NA', -1, '0'),
  (14, 2, 'CBC before release assessment.', '2014-07-01 12:00:00', 'NA', 1490, 0, 'NA', -1, '0');

-- Blood counts. Rows 1 to 3 and 8 need a packed cell volume worked out; 4 has
-- equal counts; 5 gives 0 and 6 a negative volume (nothing written); 7 has a
-- count of 0; 9 hangs on a record entry that no longer exists (not selected).
INSERT INTO cbc (id, record_entry_id, date, count, corrected_count, pcv) VALUES
  (1, 7, '2014-06-02', 10, 8, 0),
  (2, 8, '2014-06-09', 9, 7, 0),
  (3, 9, '2014-06-16', 7, 5, 0),
  (4, 10, '2014-06-03', 12, 12, 0),
  (5, 11, '2014-06-10', 11, 0, 0),
  (6, 12, '2014-06-17', 6, -3, 0),
  (7, 13, '2014-06-24', 0, 4, 0),
  (8, 14, '2014-07-01', 14, 13, 0),
  (9, 99, '2014-07-02', 15, 12, 0);

-- Transfers. Rows 1, 2 and 6 begin with " - "; row 2 had it twice. Rows 3 to 5
-- only look alike and keep their names.
INSERT INTO transfers (id, record_entry_id, patient_id, date, name, city, state, country, reason) VALUES
  (1, 2, '2014-0112', '2014-08-14', ' - Desert Raptor Sanctuary', 'Red Butte', 'AZ', 'USA', 'E/S'),
  (2, 4, '2014-0187', '2014-09-02', ' -  - Coastal Wildlife Hospital', 'Port Alder', 'OR', 'USA', 'E/S'),
  (3, 6, '2014-0203', '2014-09-20', '- Hillside Veterinary Clinic', 'Cedar Flats', 'OR', 'USA', 'MED'),
  (4, 10, '2014-0342', '2014-07-11', 'Northfield Bird Rescue', 'Northfield', 'WA', 'USA', 'E/S'),
  (5, 12, '2014-0342', '2014-07-30', ' -Lakeview Nature Center', 'Lakeview', 'WA', 'USA', 'ED'),
  (6, 7, '2014-0318', '2014-08-01', ' - Mesa Verde Raptor Trust', 'Mesa Verde', 'CO', 'USA', 'E/S');

-- Enrichment log rows in the old meaning of `type` and `interactionLevel`.
--   1  type 1 (T), level 8|2, time with a trailing blank, overall time, behaviour
--   2  type 2|8|128 after a one-word `what`, level 1, only an overall time
--   3  type 1|4|16|32|64, level 4, a quote in the comments
--   4  a quote in `what` (every text is escaped on write, so quotes stay)
--   5  saved empty: every column but the date and who is null
--   6  a quote in `interactionTime`
INSERT INTO enrichment (id, date, who, what, type, goal, location, behavior, interactionLevel,
                        interactionTime, overallTime, comments) VALUES
  (1, '2014-05-02 09:30:00', 'K.O.', '', 1, 'Keep flight muscles working', 'Flight cage 2',
   'Footed and mantled over the lure.', 10, '10 min ', '45 min', 'Took the lure on the first pass.'),
  (2, '2014-05-03 14:00:00', 'R.V.', 'Kong', 138, 'Foraging', 'Raptor mews A',
   '', 1, '', '20 min', 'Pulled the mouse out within a minute.'),
  (3, '2014-05-04 10:15:00', 'K.O.', '', 117, 'Reduce pacing', 'Raptor mews A',
   'Vocalised twice.', 4, '15 minutes', '', 'Didn''t approach until the keeper left.'),
  (4, '2014-05-05 16:45:00', 'T.L.', 'Keeper''s glove', 8, 'Scent novelty', 'Hospital room',
   'Ignored it.', 2, '5 min', '30 min', 'No interest.'),
  (5, '2014-05-06 08:00:00', 'R.V.', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL),
  (6, '2014-05-07 11:20:00', 'T.L.', 'Mirror', 6, 'Social novelty', 'Hospital room',
   'Bobbed at its reflection.', 2, 'until 4 o''clock', '2 hr', 'Left up over lunch.');

-- Locations and their log entries, two with long note lines (one broken at a tab).
INSERT INTO location (id, name, capacity, description) VALUES
  (1, 'Flight cage 2', 4, 'Large flight, 30 m'),
  (2, 'Raptor mews A', 2, 'Mews with weathering yard'),
  (3, 'Pond 1', 12, 'Waterfowl recovery pond');

INSERT INTO location_record_entry (id, location_id, notes, date, who) VALUES
  (1, 1, 'Full clean-out of flight cage 2: removed old substrate, pressure washed perches and walls, replaced two cracked perch wraps with new turf, refilled the bath and checked the netting along the north wall for gaps; none found. Juniper ate 80% of diet.',
   '2014-05-10 12:00:00', 'K.O.'),
  (2, 2, 'Mews A hosed down.', '2014-05-11 12:00:00', 'R.V.'),
  (3, 3, NULL, '2014-05-12 12:00:00', 'T.L.'),
  (4, 3, 'Water change 50%; temp 18.5 C, pH 7.8, ammonia 0.25 mg/l, nitrite 0, skimmer-cleaned,\tand the return pump intake cleared of leaves.',
   '2014-05-13 12:00:00', 'T.L.');
