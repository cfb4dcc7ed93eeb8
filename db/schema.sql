-- Corvana records tables that CorvanaDataImporter writes and reads.
--
-- Load into an empty database:   mariadb DBNAME < db/schema.sql
-- (scripts/db.sh create NAME does this and writes a matching
-- CorvanaDataImporter.ini.)
--
-- This models the application's own tables only as far as the importer's
-- statements reach: every column some statement names, plus the automatic
-- `id` key of each table. Names keep the application's spelling and case.
--
-- Shapes follow the importer's records:
--   * text columns are at least as wide as the record field (its size less
--     the terminator); free-text notes that may run to 100,000 characters
--     are MEDIUMTEXT;
--   * date-only fields are DATE, fields that may carry a time are DATETIME;
--     "0000-00-00" means "no date", as in the application;
--   * every column has a default, so a row can be inserted naming only the
--     columns a job uses;
--   * a column is nullable only where a reader of it handles NULL (for
--     example `patient.band`, the species taxonomy, the enrichment log);
--     everything else is NOT NULL with an empty or zero default.
-- Everything is latin1, as on the application's server; its default
-- collation, latin1_swedish_ci, compares without regard to letter case.

-- Zero-date defaults must be accepted whatever mode the loading server runs in.
SET SESSION sql_mode = 'NO_ENGINE_SUBSTITUTION';

CREATE TABLE patient (
  id                        INT NOT NULL AUTO_INCREMENT,
  patient_id                VARCHAR(15) NULL DEFAULT NULL,
  name                      VARCHAR(31) NOT NULL DEFAULT '',
  species                   VARCHAR(15) NOT NULL DEFAULT '',
  morph                     VARCHAR(15) NOT NULL DEFAULT '',
  status                    VARCHAR(3) NOT NULL DEFAULT '',
  subStatus                 VARCHAR(3) NOT NULL DEFAULT '',
  location                  VARCHAR(31) NOT NULL DEFAULT '',
  ageIn                     VARCHAR(14) NOT NULL DEFAULT '',
  dob                       DATE NOT NULL DEFAULT '0000-00-00',
  age                       VARCHAR(14) NOT NULL DEFAULT '',
  sex                       VARCHAR(10) NOT NULL DEFAULT '',
  -- 64 flag bits; the importer sends them as a signed decimal.
  flags                     BIGINT NOT NULL DEFAULT 0,
  admission_date            DATE NOT NULL DEFAULT '0000-00-00',
  final_date                DATE NOT NULL DEFAULT '0000-00-00',
  injury_cause              VARCHAR(31) NOT NULL DEFAULT '',
  notes                     VARCHAR(255) NOT NULL DEFAULT '',
  -- NULL when the application never set a band; readers treat it as empty.
  band                      VARCHAR(63) NULL DEFAULT NULL,
  aux_marker                VARCHAR(15) NOT NULL DEFAULT '',
  microchip                 VARCHAR(31) NOT NULL DEFAULT '',
  expected_release_date     DATE NOT NULL DEFAULT '0000-00-00',
  keywords                  VARCHAR(63) NOT NULL DEFAULT '',
  ideal_weight              INT NOT NULL DEFAULT 0,
  winter_weight             INT NOT NULL DEFAULT 0,
  away_from_date            DATE NOT NULL DEFAULT '0000-00-00',
  away_to_date              DATE NOT NULL DEFAULT '0000-00-00',
  rar                       VARCHAR(63) NOT NULL DEFAULT '',
  ageRelatedCharacteristics VARCHAR(255) NOT NULL DEFAULT '',
  husbandryNotes            VARCHAR(255) NOT NULL DEFAULT '',
  handlerTrainingLevel      INT NOT NULL DEFAULT 0,
  species_group             VARCHAR(63) NOT NULL DEFAULT '',
  team                      VARCHAR(16) NOT NULL DEFAULT '',
  admittedBy                VARCHAR(31) NOT NULL DEFAULT '',
  admissionTime             VARCHAR(15) NOT NULL DEFAULT '',
  reason_for_euth           VARCHAR(34) NOT NULL DEFAULT '',
  presenter_name            VARCHAR(47) NOT NULL DEFAULT '',
  presenter_org             VARCHAR(63) NOT NULL DEFAULT '',
  presenter_addr            VARCHAR(31) NOT NULL DEFAULT '',
  presenter_city            VARCHAR(31) NOT NULL DEFAULT '',
  presenter_district        VARCHAR(20) NOT NULL DEFAULT '',
  presenter_state           VARCHAR(20) NOT NULL DEFAULT '',
  presenter_zip             VARCHAR(10) NOT NULL DEFAULT '',
  presenter_county          VARCHAR(15) NOT NULL DEFAULT '',
  presenter_country         VARCHAR(15) NOT NULL DEFAULT '',
  presenter_phone1          VARCHAR(19) NOT NULL DEFAULT '',
  presenter_phone2          VARCHAR(19) NOT NULL DEFAULT '',
  presenter_email           VARCHAR(63) NOT NULL DEFAULT '',
  presenter_transporter     VARCHAR(34) NOT NULL DEFAULT '',
  clientId                  INT NOT NULL DEFAULT 0,
  found_name                VARCHAR(47) NOT NULL DEFAULT '',
  found_addr                VARCHAR(31) NOT NULL DEFAULT '',
  found_crossStreets        VARCHAR(31) NOT NULL DEFAULT '',
  found_city                VARCHAR(31) NOT NULL DEFAULT '',
  found_district            VARCHAR(20) NOT NULL DEFAULT '',
  found_state               VARCHAR(20) NOT NULL DEFAULT '',
  found_zip                 VARCHAR(10) NOT NULL DEFAULT '',
  found_county              VARCHAR(15) NOT NULL DEFAULT '',
  found_country             VARCHAR(15) NOT NULL DEFAULT '',
  found_phone1              VARCHAR(19) NOT NULL DEFAULT '',
  found_phone2              VARCHAR(19) NOT NULL DEFAULT '',
  found_email               VARCHAR(63) NOT NULL DEFAULT '',
  found_hx                  VARCHAR(255) NOT NULL DEFAULT '',
  found_lat                 DOUBLE NOT NULL DEFAULT 0,
  found_lon                 DOUBLE NOT NULL DEFAULT 0,
  found_date                DATE NOT NULL DEFAULT '0000-00-00',
  whenCaptured              VARCHAR(16) NOT NULL DEFAULT '',
  donation                  DOUBLE NOT NULL DEFAULT 0,
  donation_type             VARCHAR(7) NOT NULL DEFAULT '',
  donation_details          VARCHAR(15) NOT NULL DEFAULT '',
  collection_info           VARCHAR(255) NOT NULL DEFAULT '',
  collection_depth          INT NOT NULL DEFAULT 0,
  collection_method         VARCHAR(63) NOT NULL DEFAULT '',
  collection_water_temp     DOUBLE NOT NULL DEFAULT 0,
  admission_question_1      VARCHAR(30) NOT NULL DEFAULT '',
  admission_question_2      VARCHAR(30) NOT NULL DEFAULT '',
  admission_question_3      VARCHAR(30) NOT NULL DEFAULT '',
  admission_question_4      VARCHAR(30) NOT NULL DEFAULT '',
  admission_question_5      VARCHAR(31) NOT NULL DEFAULT '',
  spillId                   INT NOT NULL DEFAULT 0,
  PRIMARY KEY (id),
  KEY patient_patient_id (patient_id),
  KEY patient_band (band),
  KEY patient_aux_marker (aux_marker),
  KEY patient_species (species)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- Dated entries of a patient's record; detail rows hang on their id.
CREATE TABLE record_entry (
  id         INT NOT NULL AUTO_INCREMENT,
  patient_id INT NOT NULL DEFAULT 0,             -- patient.id
  notes      MEDIUMTEXT NULL DEFAULT NULL,
  date       DATETIME NOT NULL DEFAULT '0000-00-00 00:00:00',
  who        VARCHAR(64) NOT NULL DEFAULT '',
  weight     DOUBLE NOT NULL DEFAULT 0,
  keel       DOUBLE NOT NULL DEFAULT 0,
  location   VARCHAR(64) NOT NULL DEFAULT '',
  amountFed  INT NOT NULL DEFAULT 0,
  special    CHAR(1) NOT NULL DEFAULT '',
  PRIMARY KEY (id),
  KEY record_entry_patient_id (patient_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

CREATE TABLE problems (
  id           INT NOT NULL AUTO_INCREMENT,
  patient_id   INT NOT NULL DEFAULT 0,           -- patient.id
  description  VARCHAR(255) NOT NULL DEFAULT '',
  resolved     TINYINT NOT NULL DEFAULT 0,
  initial_date DATE NOT NULL DEFAULT '0000-00-00',
  PRIMARY KEY (id),
  KEY problems_patient_id (patient_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- Named, dated values of a patient; the newest of a name counts.
CREATE TABLE attributes (
  id         INT NOT NULL AUTO_INCREMENT,
  patient_id INT NOT NULL DEFAULT 0,             -- patient.id
  -- Case-insensitive: a name written as "Group" is looked up as 'GROUP'.
  name       VARCHAR(31) CHARACTER SET latin1 COLLATE latin1_swedish_ci
             NOT NULL DEFAULT '',
  value      VARCHAR(63) NULL DEFAULT NULL,
  -- Holds a date, or a date and time.
  date       DATETIME NOT NULL DEFAULT '0000-00-00 00:00:00',
  PRIMARY KEY (id),
  KEY attributes_patient_name (patient_id, name),
  KEY attributes_name_value (name, value)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

CREATE TABLE settings (
  id       INT NOT NULL AUTO_INCREMENT,
  category VARCHAR(64) NOT NULL DEFAULT '',
  -- Free text of any length ("Non-problems" lists words); NULL reads as empty.
  value    TEXT NULL DEFAULT NULL,
  PRIMARY KEY (id),
  KEY settings_category (category)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- Releases and transfers name the patient by its case number, not its key.
CREATE TABLE releases (
  id              INT NOT NULL AUTO_INCREMENT,
  record_entry_id INT NOT NULL DEFAULT 0,
  patient_id      VARCHAR(15) NOT NULL DEFAULT '',   -- patient.patient_id
  date            DATE NOT NULL DEFAULT '0000-00-00',
  how_age         VARCHAR(31) NOT NULL DEFAULT '',
  how_sex         VARCHAR(31) NOT NULL DEFAULT '',
  band_number     VARCHAR(63) NOT NULL DEFAULT '',
  band_size       VARCHAR(7) NOT NULL DEFAULT '',
  aux_marker      VARCHAR(16) NOT NULL DEFAULT '',
  weight          INT NOT NULL DEFAULT 0,
  released_by     VARCHAR(31) NOT NULL DEFAULT '',
  location        VARCHAR(63) NOT NULL DEFAULT '',
  district        VARCHAR(20) NOT NULL DEFAULT '',
  city            VARCHAR(31) NOT NULL DEFAULT '',
  state           VARCHAR(20) NOT NULL DEFAULT '',
  county          VARCHAR(15) NOT NULL DEFAULT '',
  country         VARCHAR(15) NOT NULL DEFAULT '',
  comments        VARCHAR(129) NOT NULL DEFAULT '',
  lat             DOUBLE NOT NULL DEFAULT 0,
  lon             DOUBLE NOT NULL DEFAULT 0,
  id_type         VARCHAR(15) NOT NULL DEFAULT '',
  tracker_type    VARCHAR(31) NOT NULL DEFAULT '',
  details         VARCHAR(127) NOT NULL DEFAULT '',
  pub_priv        VARCHAR(7) NOT NULL DEFAULT '',
  PRIMARY KEY (id),
  KEY releases_record_entry_id (record_entry_id),
  KEY releases_patient_id (patient_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

CREATE TABLE transfers (
  id              INT NOT NULL AUTO_INCREMENT,
  record_entry_id INT NOT NULL DEFAULT 0,
  patient_id      VARCHAR(15) NOT NULL DEFAULT '',   -- patient.patient_id
  date            DATE NOT NULL DEFAULT '0000-00-00',
  name            VARCHAR(63) NOT NULL DEFAULT '',
  addr            VARCHAR(31) NOT NULL DEFAULT '',
  city            VARCHAR(31) NOT NULL DEFAULT '',
  state           VARCHAR(20) NOT NULL DEFAULT '',
  country         VARCHAR(15) NOT NULL DEFAULT '',
  zip             VARCHAR(10) NOT NULL DEFAULT '',
  county          VARCHAR(15) NOT NULL DEFAULT '',
  permit          VARCHAR(127) NOT NULL DEFAULT '',
  reason          VARCHAR(15) NOT NULL DEFAULT '',
  PRIMARY KEY (id),
  KEY transfers_record_entry_id (record_entry_id),
  KEY transfers_patient_id (patient_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- Every species column may be NULL: readers keep their own value for a
-- NULL column, and the taxonomy is filled in by a second statement after
-- the insert.
CREATE TABLE species (
  id              INT NOT NULL AUTO_INCREMENT,
  abbrev          VARCHAR(15) NULL DEFAULT NULL,
  scientific_name VARCHAR(63) NULL DEFAULT NULL,
  common_name     VARCHAR(63) NULL DEFAULT NULL,
  nord            CHAR(1) NULL DEFAULT NULL,
  native          CHAR(1) NULL DEFAULT NULL,
  info_page       VARCHAR(127) NULL DEFAULT NULL,
  species_group   VARCHAR(65) NULL DEFAULT NULL,
  cost_category   INT NULL DEFAULT NULL,
  state_soc       INT NULL DEFAULT NULL,
  federal_soc     INT NULL DEFAULT NULL,
  kingdom         VARCHAR(23) NULL DEFAULT NULL,
  phylum          VARCHAR(23) NULL DEFAULT NULL,
  class           VARCHAR(23) NULL DEFAULT NULL,
  _order          VARCHAR(23) NULL DEFAULT NULL,
  family          VARCHAR(23) NULL DEFAULT NULL,
  genus           VARCHAR(23) NULL DEFAULT NULL,
  species         VARCHAR(23) NULL DEFAULT NULL,
  hms             CHAR(1) NULL DEFAULT NULL,
  value           DOUBLE NULL DEFAULT NULL,
  habitat         CHAR(1) NULL DEFAULT NULL,
  PRIMARY KEY (id),
  KEY species_abbrev (abbrev),
  KEY species_common_name (common_name)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- Enclosures, habitats and tanks.
CREATE TABLE location (
  id            INT NOT NULL AUTO_INCREMENT,
  name          VARCHAR(31) NOT NULL DEFAULT '',
  dimensions    VARCHAR(35) NOT NULL DEFAULT '',
  capacity      INT NOT NULL DEFAULT 0,
  special       VARCHAR(67) NOT NULL DEFAULT '',
  feed_order    DOUBLE NOT NULL DEFAULT 0,
  display_order DOUBLE NOT NULL DEFAULT 0,
  flags         INT NOT NULL DEFAULT 0,
  alert         VARCHAR(127) NOT NULL DEFAULT '',
  x_coord       INT NOT NULL DEFAULT 0,
  y_coord       INT NOT NULL DEFAULT 0,
  level         INT NOT NULL DEFAULT 0,
  combo_lock    VARCHAR(31) NOT NULL DEFAULT '',
  curator       VARCHAR(31) NOT NULL DEFAULT '',
  volume        DOUBLE NOT NULL DEFAULT 0,
  flow_rate     DOUBLE NOT NULL DEFAULT 0,
  description   VARCHAR(63) NOT NULL DEFAULT '',
  PRIMARY KEY (id),
  KEY location_name (name)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

CREATE TABLE addressBook (
  id                 INT NOT NULL AUTO_INCREMENT,
  org                VARCHAR(63) NOT NULL DEFAULT '',
  contactName        VARCHAR(31) NOT NULL DEFAULT '',
  addr               VARCHAR(31) NOT NULL DEFAULT '',
  addr2              VARCHAR(31) NOT NULL DEFAULT '',
  city               VARCHAR(31) NOT NULL DEFAULT '',
  state              VARCHAR(20) NOT NULL DEFAULT '',
  zip                VARCHAR(10) NOT NULL DEFAULT '',
  county             VARCHAR(15) NOT NULL DEFAULT '',
  country            VARCHAR(15) NOT NULL DEFAULT '',
  phone1             VARCHAR(31) NOT NULL DEFAULT '',
  phone2             VARCHAR(31) NOT NULL DEFAULT '',
  phone3             VARCHAR(31) NOT NULL DEFAULT '',
  email              VARCHAR(63) NOT NULL DEFAULT '',
  cellProvider       VARCHAR(30) NOT NULL DEFAULT '',
  type               INT NOT NULL DEFAULT 0,
  lat                DOUBLE NOT NULL DEFAULT 0,
  lon                DOUBLE NOT NULL DEFAULT 0,
  permit             VARCHAR(127) NOT NULL DEFAULT '',
  lookingFor         VARCHAR(63) NOT NULL DEFAULT '',
  availability       VARCHAR(63) NOT NULL DEFAULT '',
  daily_availability INT NOT NULL DEFAULT 0,
  notes              VARCHAR(127) NOT NULL DEFAULT '',
  -- A birthday may have no year: '0000-07-04'.
  dob                DATE NOT NULL DEFAULT '0000-00-00',
  webAddress         VARCHAR(64) NOT NULL DEFAULT '',
  PRIMARY KEY (id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

CREATE TABLE biometric (
  id                      INT NOT NULL AUTO_INCREMENT,
  record_entry_id         INT NOT NULL DEFAULT 0,
  date                    DATE NOT NULL DEFAULT '0000-00-00',
  weight                  DOUBLE NOT NULL DEFAULT 0,
  wc                      DOUBLE NOT NULL DEFAULT 0,
  hallux                  DOUBLE NOT NULL DEFAULT 0,
  culmen                  DOUBLE NOT NULL DEFAULT 0,
  length                  DOUBLE NOT NULL DEFAULT 0,
  fork_length             DOUBLE NOT NULL DEFAULT 0,
  standard_length         DOUBLE NOT NULL DEFAULT 0,
  girth                   DOUBLE NOT NULL DEFAULT 0,
  disc_width              DOUBLE NOT NULL DEFAULT 0,
  disc_length             DOUBLE NOT NULL DEFAULT 0,
  straight_NPN_length     DOUBLE NOT NULL DEFAULT 0,
  curved_NPN_length       DOUBLE NOT NULL DEFAULT 0,
  straight_carapace_width DOUBLE NOT NULL DEFAULT 0,
  curved_carapace_width   DOUBLE NOT NULL DEFAULT 0,
  sv_length               DOUBLE NOT NULL DEFAULT 0,
  PRIMARY KEY (id),
  KEY biometric_record_entry_id (record_entry_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- Packed cell volume tests; -1 in ts or buffy means "not measured".
CREATE TABLE pcv (
  id              INT NOT NULL AUTO_INCREMENT,
  record_entry_id INT NOT NULL DEFAULT 0,
  date            DATE NOT NULL DEFAULT '0000-00-00',
  pcv             INT NOT NULL DEFAULT 0,
  ts              DOUBLE NOT NULL DEFAULT 0,
  buffy           DOUBLE NOT NULL DEFAULT 0,
  serum           VARCHAR(31) NOT NULL DEFAULT '',
  PRIMARY KEY (id),
  KEY pcv_record_entry_id (record_entry_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

CREATE TABLE band_report (
  id                INT NOT NULL AUTO_INCREMENT,
  record_entry_id   INT NOT NULL DEFAULT 0,
  date              DATE NOT NULL DEFAULT '0000-00-00',
  lat               DOUBLE NOT NULL DEFAULT 0,
  lon               DOUBLE NOT NULL DEFAULT 0,
  finder_info       VARCHAR(255) NOT NULL DEFAULT '',
  location          VARCHAR(255) NOT NULL DEFAULT '',
  notes             VARCHAR(131) NOT NULL DEFAULT '',
  present_condition INT NOT NULL DEFAULT 0,
  how               INT NOT NULL DEFAULT 0,
  band              VARCHAR(63) NOT NULL DEFAULT '',
  aux_marker        VARCHAR(15) NOT NULL DEFAULT '',
  PRIMARY KEY (id),
  KEY band_report_record_entry_id (record_entry_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- Dated entries of a location's log; water tests hang on their id.
CREATE TABLE location_record_entry (
  id          INT NOT NULL AUTO_INCREMENT,
  location_id INT NOT NULL DEFAULT 0,            -- location.id
  notes       MEDIUMTEXT NULL DEFAULT NULL,
  date        DATETIME NOT NULL DEFAULT '0000-00-00 00:00:00',
  who         VARCHAR(64) NOT NULL DEFAULT '',
  PRIMARY KEY (id),
  KEY location_record_entry_location_id (location_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- One water test; -1 in a reading means "not measured".
CREATE TABLE water_quality (
  id                       INT NOT NULL AUTO_INCREMENT,
  location_record_entry_id INT NOT NULL DEFAULT 0,
  location_id              INT NOT NULL DEFAULT 0,
  date                     DATETIME NOT NULL DEFAULT '0000-00-00 00:00:00',
  who                      VARCHAR(31) NOT NULL DEFAULT '',
  temp                     DOUBLE NOT NULL DEFAULT 0,
  pH                       DOUBLE NOT NULL DEFAULT 0,
  fecal_coliform           DOUBLE NOT NULL DEFAULT 0,
  chlorine                 DOUBLE NOT NULL DEFAULT 0,
  salinity                 DOUBLE NOT NULL DEFAULT 0,
  nh3                      DOUBLE NOT NULL DEFAULT 0,
  no2                      DOUBLE NOT NULL DEFAULT 0,
  no3                      DOUBLE NOT NULL DEFAULT 0,
  `do`                     DOUBLE NOT NULL DEFAULT 0,
  phosphate                DOUBLE NOT NULL DEFAULT 0,
  cu2                      DOUBLE NOT NULL DEFAULT 0,
  percent_abs              DOUBLE NOT NULL DEFAULT 0,
  hardness                 DOUBLE NOT NULL DEFAULT 0,
  residual_ozone           DOUBLE NOT NULL DEFAULT 0,
  orp                      DOUBLE NOT NULL DEFAULT 0,
  alk                      DOUBLE NOT NULL DEFAULT 0,
  ca2                      DOUBLE NOT NULL DEFAULT 0,
  copper_sulfate           DOUBLE NOT NULL DEFAULT 0,
  chloroquine              DOUBLE NOT NULL DEFAULT 0,
  kh                       DOUBLE NOT NULL DEFAULT 0,
  nh4                      DOUBLE NOT NULL DEFAULT 0,
  fe                       DOUBLE NOT NULL DEFAULT 0,
  sio2                     DOUBLE NOT NULL DEFAULT 0,
  co2                      DOUBLE NOT NULL DEFAULT 0,
  TAN                      DOUBLE NOT NULL DEFAULT 0,
  PRIMARY KEY (id),
  KEY water_quality_location_record_entry_id (location_record_entry_id),
  KEY water_quality_location_id (location_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- The application's enrichment log. The importer only reads and rewrites
-- rows; every column may be NULL and a reader keeps its own value then.
-- Widths fit the rewritten texts (what, interactionTime, comments grow).
CREATE TABLE enrichment (
  id               INT NOT NULL AUTO_INCREMENT,
  date             DATETIME NULL DEFAULT NULL,
  who              VARCHAR(15) NULL DEFAULT NULL,
  what             VARCHAR(319) NULL DEFAULT NULL,
  type             INT NULL DEFAULT NULL,
  goal             VARCHAR(127) NULL DEFAULT NULL,
  location         VARCHAR(63) NULL DEFAULT NULL,
  behavior         VARCHAR(127) NULL DEFAULT NULL,
  interactionLevel INT NULL DEFAULT NULL,
  interactionTime  VARCHAR(127) NULL DEFAULT NULL,
  overallTime      VARCHAR(31) NULL DEFAULT NULL,
  comments         TEXT NULL DEFAULT NULL,
  PRIMARY KEY (id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;

-- Blood counts; corrected_count = count * pcv / 45.
CREATE TABLE cbc (
  id              INT NOT NULL AUTO_INCREMENT,
  record_entry_id INT NOT NULL DEFAULT 0,
  date            DATE NOT NULL DEFAULT '0000-00-00',
  count           INT NOT NULL DEFAULT 0,
  corrected_count INT NOT NULL DEFAULT 0,
  pcv             INT NOT NULL DEFAULT 0,
  PRIMARY KEY (id),
  KEY cbc_record_entry_id (record_entry_id)
) ENGINE=InnoDB DEFAULT CHARSET=latin1;
