-- Species rows the CSAQ_PKS patient import looks animals up in (by common name),
-- some still without taxonomy for the taxonomy repair. The row without abbreviation
-- ends the look-up: species listed after it are not found.
insert into species (abbrev,scientific_name,common_name,species_group) values
  ('LOGG','Caretta caretta','Loggerhead turtle','reptile:turtle'),
  ('KRST','Lepidochelys kempii','Kemp''s ridley sea turtle','reptile:turtle'),
  ('MOJE','Aurelia aurita','Moon jelly','invertebrate:cnidarian'),
  ('BOSH','Sphyrna tiburo','Bonnethead shark','fish:shark'),
  ('EAHE','Cryptobranchus alleganiensis','Eastern hellbender','amphibian:salamander'),
  ('YBSL','Trachemys scripta scripta','Yellow-bellied slider','reptile:turtle'),
  ('AMKE','Falco sparverius','American kestrel','avian:raptor'),
  ('CHBA','Serranus tortugarum','Chalk bass','fish:marine'),
  ('SAPE','Diplectrum formosum','Sandperch','fish:marine'),
  ('BLTA','Acanthurus coeruleus','Blue tang','fish:marine'),
  ('ETSA','Ambystoma tigrinum','Eastern tiger salamander','amphibian:salamander'),
  ('NARO','Lontra canadensis','North American river otter','mammal:otter'),
  ('JAKF','Equetus lanceolatus','Jack-knifefish','fish:marine'),
  ('GHCR','Petrochirus diogenes','Giant hermit crab','invertebrate:crustacean'),
  ('',NULL,'Unsorted invertebrates','invertebrate'),
  ('ATSN','Chrysaora quinquecirrha','Atlantic sea nettle','invertebrate:cnidarian');
